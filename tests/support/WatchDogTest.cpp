#include "core/support/WatchDog.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <limits>

#include "platform/ProcessEnd.h"

namespace Tarnex::Core::Utils {
namespace {

bool ExpiresBeforeItsEnd(unsigned int seconds) {
    int count = 0;
    {
        WatchDog watchDog(seconds, [&count] { ++count; });
        watchDog.Start();
    }
    EXPECT_LE(count, 1);
    return count == 1;
}

TEST(WatchDog, IsCancelledBeforeItsTimeAndOnlyThen) {
    EXPECT_FALSE(ExpiresBeforeItsEnd(60));
    EXPECT_FALSE(ExpiresBeforeItsEnd(std::numeric_limits<unsigned int>::max()));
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(ExpiresBeforeItsEnd(0));
    }
}

using Action = void (*)();

void Hang() {
    for (;;) {
        pause();
    }
}

void End() {
    Platform::EndProcess(WatchDog::EXIT_CODE);
}

// A handler that hangs stands for all that can stop exit.
void EndThroughAHangingExit() {
    std::atexit(Hang);
    End();
}

void HangInExit() {
    std::atexit(Hang);
    std::exit(0);
}

void HangWithSignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    Hang();
}

void Watch(Action onExpiry, Action mainThread) {
    WatchDog watchDog(1, onExpiry);
    watchDog.Start();
    mainThread();
}

TEST(WatchDogDeathTest, EndsTheProcessWhateverHangs) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const std::pair<Action, Action> cases[] = {
        {End, HangWithSignalsBlocked},
        {End, HangInExit},
        {Hang, Hang},
        {EndThroughAHangingExit, Hang},
    };
    for (const auto& [onExpiry, mainThread] : cases) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EXIT(Watch(onExpiry, mainThread), testing::ExitedWithCode(WatchDog::EXIT_CODE), "");
        const auto taken = std::chrono::steady_clock::now() - start;
        EXPECT_GE(taken, std::chrono::seconds(1));
        // The promise is a second more; the rest is the start of the child.
        EXPECT_LT(taken, std::chrono::milliseconds(2500));
    }
}

}  // namespace
}  // namespace Tarnex::Core::Utils
