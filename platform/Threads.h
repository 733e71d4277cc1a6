#pragma once

#include <semaphore.h>

#include <chrono>
#include <functional>
#include <thread>

namespace Tarnex::Platform {

/// A counting semaphore whose waits run on the monotonic clock. Holds no lock that a stopped thread
/// could keep, allocates nothing, and gives no wake-up for nothing. Thread-safe.
class Semaphore {
public:
    Semaphore() { sem_init(&semaphore, 0, 0); }
    ~Semaphore() { sem_destroy(&semaphore); }

    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    void Post() { sem_post(&semaphore); }
    void Wait();

    /// False if there was no post until then.
    [[nodiscard]] bool WaitUntil(std::chrono::steady_clock::time_point time);

private:
    sem_t semaphore;
};

/// Runs `task` on a new thread that takes no signals. Throws `std::system_error`.
std::thread StartShieldedThread(std::function<void()> task);

}  // namespace Tarnex::Platform
