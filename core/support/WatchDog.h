#pragma once

#include <functional>
#include <memory>

namespace Tarnex::Core::Utils {

/// Limits the time of a run, whatever the main thread is doing.
///
/// When the time since `Start` is up, the action runs once, on its own thread. The action is meant
/// to call `exit(EXIT_CODE)`. That call can hang: a module may hold the loader's lock, or a pipe
/// may be full. So a second thread, created at `Start`, ends the process with the same code
/// `GRACE` milliseconds after the action began, unless the action has returned by then.
class WatchDog {
public:
    static constexpr int EXIT_CODE = 2;
    static constexpr int GRACE = 250;

    WatchDog(unsigned int seconds, std::function<void()> onExpiry);

    /// Cancels the action if the time isn't up yet. Otherwise waits for the action.
    ~WatchDog();

    WatchDog(const WatchDog&) = delete;
    WatchDog& operator=(const WatchDog&) = delete;

    /// Starts the time, measured by the monotonic clock; 0 seconds expire at once. Call it only
    /// once. Throws `std::system_error` if no thread can be created.
    void Start();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace Tarnex::Core::Utils
