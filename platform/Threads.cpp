#include "platform/Threads.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <utility>

namespace Tarnex::Platform {
namespace {

class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before{};
};

}  // namespace

void Semaphore::Wait() {
    while (sem_wait(&semaphore) != 0 && errno == EINTR) {
    }
}

bool Semaphore::WaitUntil(std::chrono::steady_clock::time_point time) {
    const auto nanoseconds = std::chrono::nanoseconds(time.time_since_epoch());
    const auto seconds = std::chrono::floor<std::chrono::seconds>(nanoseconds);
    const timespec until{seconds.count(), (nanoseconds - seconds).count()};
    int result = 0;
    do {
        result = sem_clockwait(&semaphore, CLOCK_MONOTONIC, &until);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

std::thread StartShieldedThread(std::function<void()> task) {
    // A new thread inherits the mask, so it can't receive a signal at any moment.
    const SignalsBlocked blocked;
    return std::thread(std::move(task));
}

}  // namespace Tarnex::Platform
