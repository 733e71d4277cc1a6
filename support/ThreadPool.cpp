#include "core/support/ThreadPool.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <optional>
#include <utility>

namespace Tarnex::Core {

class ThreadPool::Impl {
public:
    explicit Impl(std::size_t count) : count(count), pool(std::in_place, count) {}

    const std::size_t count;
    std::optional<boost::asio::thread_pool> pool;
};

ThreadPool::ThreadPool(std::size_t threadCount)
    : impl(std::make_unique<Impl>(std::max<std::size_t>(threadCount, 1))) {}

// A pool that is destroyed without a join drops the tasks that haven't begun.
ThreadPool::~ThreadPool() = default;

void ThreadPool::AddTask(std::function<void()> task) {
    boost::asio::post(*impl->pool, std::move(task));
}

void ThreadPool::Stop() {
    // A joined pool runs nothing more, so a new one takes its place.
    impl->pool->join();
    impl->pool.emplace(impl->count);
}

}  // namespace Tarnex::Core
