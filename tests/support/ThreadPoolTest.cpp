#include "core/support/ThreadPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <new>

namespace Tarnex::Core {
namespace {

TEST(ThreadPool, StopWaitsForAllAndLeavesThePoolUsable) {
    ThreadPool pool(3);
    for (int round = 0; round < 3; ++round) {
        std::atomic<int> ended = 0;
        std::latch all(3);  // opens only if three tasks run side by side
        for (int i = 0; i < 3; ++i) {
            pool.AddTask([&] {
                all.arrive_and_wait();
                ++ended;
            });
        }
        pool.Stop();
        EXPECT_EQ(ended, 3);
    }
}

TEST(ThreadPool, OneThreadKeepsTheOrder) {
    std::string order;
    ThreadPool pool(0);
    for (const char name : std::string("abcdefgh")) {
        pool.AddTask([&order, name] { order += name; });
    }
    pool.Stop();
    EXPECT_EQ(order, "abcdefgh");
}

TEST(ThreadPool, StopRethrowsButRunsAllTasks) {
    ThreadPool pool(2);
    std::atomic<int> ended = 0;
    pool.AddTask([] { throw std::bad_alloc(); });
    pool.AddTask([&ended] { ++ended; });
    EXPECT_THROW(pool.Stop(), std::bad_alloc);
    pool.AddTask([&ended] { ++ended; });
    EXPECT_NO_THROW(pool.Stop());
    EXPECT_EQ(ended, 2);
}

}  // namespace
}  // namespace Tarnex::Core
