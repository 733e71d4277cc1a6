#include "core/support/ThreadPool.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <exception>
#include <optional>
#include <utility>

#include "core/support/Mutex.h"

namespace Tarnex::Core {

class ThreadPool::Impl {
public:
    explicit Impl(std::size_t threadCount) : count(threadCount), threads(std::in_place, count) {}

    void Add(std::function<void()> task) {
        if (!threads) {
            threads.emplace(count);
        }
        boost::asio::post(*threads, [this, task = std::move(task)] { Run(task); });
    }

    void Stop() {
        if (threads) {
            threads->join();
            threads.reset();  // a joined pool runs no more tasks
        }
        if (const std::exception_ptr thrown = TakeFailure()) {
            std::rethrow_exception(thrown);
        }
    }

private:
    std::exception_ptr TakeFailure() {
        const Lock lock(mutex);
        return std::exchange(failure, nullptr);
    }

    void Run(const std::function<void()>& task) {
        try {
            task();
        } catch (...) {
            const Lock lock(mutex);
            failure = failure ? failure : std::current_exception();
        }
    }

    const std::size_t count;
    Mutex mutex;
    std::exception_ptr failure TARNEX_GUARDED_BY(mutex);
    std::optional<boost::asio::thread_pool> threads;
};

ThreadPool::ThreadPool(std::size_t threadCount)
    : impl(std::make_unique<Impl>(std::max<std::size_t>(threadCount, 1))) {}

// Destroying the pool without a join drops the tasks that haven't begun.
ThreadPool::~ThreadPool() = default;

void ThreadPool::AddTask(std::function<void()> task) {
    impl->Add(std::move(task));
}

void ThreadPool::Stop() {
    impl->Stop();
}

}  // namespace Tarnex::Core
