#pragma once

#include <exception>
#include <functional>
#include <thread>

#include "platform/Threads.h"

namespace Tarnex::Exercise {

/// A second thread that works strictly in turn with the first one.
class AudioThread {
public:
    /// The only one. Started at the first call, and never ended.
    static AudioThread& Get();

    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;

    /// Does the task there and waits for its end. Throws what the task throws.
    void Do(const std::function<void()>& task);

    /// Whether the calling thread is this one.
    bool IsCurrent() const { return std::this_thread::get_id() == id; }

private:
    AudioThread();
    void Work();

    const std::function<void()>* task = nullptr;
    std::exception_ptr failure;
    Platform::Semaphore begin;
    Platform::Semaphore end;
    std::thread thread;
    std::thread::id id;
};

}  // namespace Tarnex::Exercise
