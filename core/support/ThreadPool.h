#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace Tarnex::Core {

/// Runs tasks on a fixed number of threads and starts them in the order they were added.
/// `AddTask` and `Stop` are thread-bound to the owner.
class ThreadPool {
public:
    /// 0, which means that the platform can't tell, gives one thread.
    explicit ThreadPool(std::size_t threadCount);

    /// Waits for the tasks that are running; drops those that haven't begun.
    ~ThreadPool();

    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void AddTask(std::function<void()> task);

    /// Waits until every task added so far has ended. The pool stays usable. Rethrows the first
    /// exception that a task has thrown since the last call, if any.
    void Stop();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace Tarnex::Core
