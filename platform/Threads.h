#pragma once

#include <semaphore.h>

#include <chrono>
#include <functional>
#include <thread>

namespace Tarnex::Platform {

/// A counting semaphore that waits by the monotonic clock. It has no lock that a stopped thread
/// could hold, allocates nothing, and has no spurious wake-ups. Thread-safe.
class Semaphore {
public:
    Semaphore() { sem_init(&semaphore, 0, 0); }
    ~Semaphore() { sem_destroy(&semaphore); }

    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    void Post() { sem_post(&semaphore); }
    void Wait();

    /// Returns false if nothing was posted until `time`.
    [[nodiscard]] bool WaitUntil(std::chrono::steady_clock::time_point time);

private:
    sem_t semaphore;
};

/// Runs `task` on a new thread that receives no signals. Throws `std::system_error`.
std::thread StartShieldedThread(std::function<void()> task);

}  // namespace Tarnex::Platform
