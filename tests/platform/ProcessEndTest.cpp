#include "platform/ProcessEnd.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace Tarnex::Platform {
namespace {

std::atomic<long> turns = 0;

void FailIfTheMainThreadRuns() {
    const long before = turns;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    if (turns != before) {
        _exit(99);
    }
}

void EndWhileTheMainThreadRuns(void (*exitHandler)()) {
    std::atexit(exitHandler);
    std::thread([] { EndProcess(2); }).detach();
    for (;;) {
        turns.fetch_add(1);
        std::this_thread::yield();
    }
}

TEST(ProcessEndDeathTest, StopsTheOtherThreadsAndKeepsItsCode) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(EndWhileTheMainThreadRuns(FailIfTheMainThreadRuns), testing::ExitedWithCode(2), "");
    EXPECT_EXIT(EndWhileTheMainThreadRuns(std::abort), testing::ExitedWithCode(2), "");
}

}  // namespace
}  // namespace Tarnex::Platform
