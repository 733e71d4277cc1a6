#include "core/support/WatchDog.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <limits>
#include <string>

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

TEST(WatchDog, IsCancelledOnlyBeforeItsTime) {
    EXPECT_FALSE(ExpiresBeforeItsEnd(60));
    EXPECT_FALSE(ExpiresBeforeItsEnd(std::numeric_limits<unsigned int>::max()));
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(ExpiresBeforeItsEnd(0));
    }
}

void WatchWithAnActionThatHangs() {
    const auto hang = [] {
        for (;;) {
            pause();
        }
    };
    WatchDog watchDog(1, hang);
    watchDog.Start();
    hang();
}

TEST(WatchDogDeathTest, EndsTheProcessIfTheActionHangs) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EXIT(WatchWithAnActionThatHangs(), testing::ExitedWithCode(WatchDog::EXIT_CODE), "");
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken, std::chrono::seconds(1));
    // One second more is promised; the rest is for the start of the child process.
    EXPECT_LT(taken, std::chrono::milliseconds(2500));
}

/// Stops all other threads but the back-stop, which receives no signals.
void HoldTheOtherThreads(std::chrono::milliseconds time) {
    static timespec pause;
    pause = {time.count() / 1000, time.count() % 1000 * 1'000'000};
    std::signal(SIGUSR1, [](int) { nanosleep(&pause, nullptr); });
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        const int thread = std::stoi(task.path().filename());
        if (thread != gettid()) {
            tgkill(getpid(), thread, SIGUSR1);
        }
    }
}

void CancelWhileTheRunnerIsHeld() {
    {
        WatchDog watchDog(1, [] {});
        watchDog.Start();
        HoldTheOtherThreads(std::chrono::milliseconds(1000 + 3 * WatchDog::GRACE));
    }
    std::_Exit(0);
}

TEST(WatchDogDeathTest, ALateReactionDoesNotUndoACancellation) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(CancelWhileTheRunnerIsHeld(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace Tarnex::Core::Utils
