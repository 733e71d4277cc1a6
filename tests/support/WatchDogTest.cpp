#include "core/support/WatchDog.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <latch>
#include <limits>
#include <thread>

#include "platform/ProcessEnd.h"

namespace Tarnex::Core::Utils {
namespace {

TEST(WatchDog, RunsItsActionOnceOnAThreadOfItsOwn) {
    std::latch ran(1);
    std::thread::id runner;
    int count = 0;
    {
        WatchDog watchDog(0, [&] {
            ++count;
            runner = std::this_thread::get_id();
            ran.count_down();
        });
        watchDog.Start();
        ran.wait();
    }
    EXPECT_EQ(count, 1);
    EXPECT_NE(runner, std::this_thread::get_id());
}

TEST(WatchDog, IsCancelledBeforeItsTimeAndOnlyThen) {
    for (const unsigned int seconds : {60U, std::numeric_limits<unsigned int>::max()}) {
        std::atomic<bool> ran = false;
        const auto start = std::chrono::steady_clock::now();
        {
            WatchDog watchDog(seconds, [&ran] { ran = true; });
            watchDog.Start();
        }
        EXPECT_FALSE(ran) << seconds;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    }
    for (int i = 0; i < 200; ++i) {
        bool ran = false;
        {
            WatchDog watchDog(0, [&ran] { ran = true; });
            watchDog.Start();
        }
        EXPECT_TRUE(ran);
    }
    EXPECT_NO_THROW(WatchDog(0, [] {}));
}

using Action = void (*)();

void Hang() {
    for (;;) {
        pause();
    }
}

/// Arms a watch-dog of one second and lets the main thread do its worst.
void Watch(Action onExpiry, Action mainThread) {
    WatchDog watchDog(1, onExpiry);
    watchDog.Start();
    mainThread();
    Hang();
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

void BlockAllSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

TEST(WatchDogDeathTest, EndsTheProcessWhateverHangs) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const std::pair<Action, Action> cases[] = {
        {End, Hang},  {End, BlockAllSignals},         {End, HangInExit},
        {Hang, Hang}, {EndThroughAHangingExit, Hang},
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
