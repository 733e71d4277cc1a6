#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace Tarnex::Core {

/// Runs tasks on a fixed number of threads, in the order in which they were given.
/// `AddTask` and `Stop` belong to one thread, the owner's.
class ThreadPool {
public:
    /// A count of 0 (the platform can't tell) means one thread.
    explicit ThreadPool(std::size_t threadCount);

    /// Lets the tasks that are running end; drops those that haven't begun.
    ~ThreadPool();

    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void AddTask(std::function<void()> task);

    /// Returns when every task given so far has ended. The pool takes new tasks after it. Throws
    /// the first of the exceptions that tasks have thrown since the last call, if there are any.
    void Stop();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace Tarnex::Core
