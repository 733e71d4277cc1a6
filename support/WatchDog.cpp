#include "core/support/WatchDog.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

#include "platform/Threads.h"

namespace Tarnex::Core::Utils {
namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

// The timer thread keeps the time and is the back-stop; the runner thread runs the action. They
// share only semaphores and one atomic with the owner: at expiry any other thread may be stopped
// for good, whatever lock it holds.
class WatchDog::Impl {
public:
    Impl(unsigned int seconds, std::function<void()> onExpiry)
        : time(seconds), onExpiry(std::move(onExpiry)) {}

    ~Impl() {
        if (!runner.joinable()) {
            return;
        }
        if (!timer.joinable() || Clock::now() < deadline) {
            Decide(State::Cancelled);
        }
        runner.join();
        if (timer.joinable()) {
            timer.join();
        }
    }

    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void Start() {
        deadline = Clock::now() + time;
        runner = std::thread([this] { Run(); });
        timer = Platform::StartShieldedThread([this] { KeepTime(); });
    }

private:
    enum class State { Armed, Cancelled, Expired };

    /// The first decision wins. True if this is it.
    bool Decide(State decision) {
        State expected = State::Armed;
        const bool isFirst = state.compare_exchange_strong(expected, decision);
        decided.Post();
        return isFirst;
    }

    void Run() {
        decided.Wait();
        progress.Post();
        if (state == State::Expired) {
            onExpiry();
        }
        progress.Post();
    }

    void KeepTime() {
        // If the runner gets no processor time, it may not react to a cancellation.
        if (progress.WaitUntil(deadline) || !Decide(State::Expired)) {
            return;  // cancelled
        }
        // See the faults "hang-then-hang" and "hang-in-constructor" of the process tests.
        const bool begun = ProgressWithinGrace();
        if (!begun || !ProgressWithinGrace()) {
            std::_Exit(EXIT_CODE);
        }
    }

    bool ProgressWithinGrace() {
        return progress.WaitUntil(Clock::now() + std::chrono::milliseconds(GRACE));
    }

    const std::chrono::seconds time;
    const std::function<void()> onExpiry;
    Clock::time_point deadline;
    std::atomic<State> state = State::Armed;
    Platform::Semaphore decided;
    Platform::Semaphore progress;
    std::thread runner;
    std::thread timer;
};

WatchDog::WatchDog(unsigned int seconds, std::function<void()> onExpiry)
    : impl(std::make_unique<Impl>(seconds, std::move(onExpiry))) {}

WatchDog::~WatchDog() = default;

void WatchDog::Start() {
    impl->Start();
}

}  // namespace Tarnex::Core::Utils
