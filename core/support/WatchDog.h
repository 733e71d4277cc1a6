#pragma once

#include <functional>
#include <memory>

namespace Tarnex::Core::Utils {

/// Limits the time of a run, whatever its main thread is doing.
///
/// When the time since `Start` is up, the action runs once on a thread of its own. The action is
/// meant to end the process by `exit(EXIT_CODE)`. That can hang (in a loader's lock that a module
/// holds, in a full pipe), so a second thread, made at `Start`, ends the process with the same code
/// `GRACE` milliseconds after the action began, unless the action has returned by then.
class WatchDog {
public:
    static constexpr int EXIT_CODE = 2;
    static constexpr int GRACE = 250;

    WatchDog(unsigned int seconds, std::function<void()> onExpiry);

    /// Cancels the action if the time isn't up yet; waits for it if it is.
    ~WatchDog();

    WatchDog(const WatchDog&) = delete;
    WatchDog& operator=(const WatchDog&) = delete;

    /// Starts the time, which runs on the monotonic clock; 0 seconds expire at once. To be called
    /// once. Throws `std::system_error` if no thread can be made.
    void Start();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace Tarnex::Core::Utils
