#include "core/support/ThreadPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <vector>

namespace Tarnex::Core {
namespace {

TEST(ThreadPool, StopWaitsForAllAndLeavesThePoolUsable) {
    ThreadPool pool(4);
    for (int round = 1; round <= 3; ++round) {
        std::atomic<int> ended = 0;
        for (int i = 0; i < 200; ++i) {
            pool.AddTask([&ended] { ++ended; });
        }
        pool.Stop();
        EXPECT_EQ(ended, 200);
    }
}

TEST(ThreadPool, RunsAsManyTasksAtOnceAsItHasThreads) {
    ThreadPool pool(3);
    std::latch all(3);  // opens only when the three run together
    for (int i = 0; i < 3; ++i) {
        pool.AddTask([&all] { all.arrive_and_wait(); });
    }
    pool.Stop();
}

TEST(ThreadPool, OneThreadKeepsTheOrderAndTheEndDropsWhatHasNotBegun) {
    std::vector<int> order;
    std::latch begun(1);
    std::latch released(1);
    {
        ThreadPool pool(0);
        for (int i = 0; i < 50; ++i) {
            pool.AddTask([&order, i] { order.push_back(i); });
        }
        pool.Stop();
        pool.AddTask([&] {
            begun.count_down();
            released.wait();
            order.push_back(50);
        });
        begun.wait();
        released.count_down();
    }
    ASSERT_EQ(order.size(), 51U);
    for (int i = 0; i <= 50; ++i) {
        EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
    }
}

}  // namespace
}  // namespace Tarnex::Core
