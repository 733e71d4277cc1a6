#include "exercise/clap/AudioThread.h"

#include <utility>

namespace Tarnex::Exercise {

AudioThread::AudioThread()
    : thread(Platform::StartShieldedThread([this] { Work(); })), id(thread.get_id()) {}

AudioThread& AudioThread::Get() {
    static auto& audioThread = *new AudioThread();
    return audioThread;
}

void AudioThread::Do(const std::function<void()>& wanted) {
    task = &wanted;
    begin.Post();
    end.Wait();
    if (const auto thrown = std::exchange(failure, nullptr)) {
        std::rethrow_exception(thrown);
    }
}

void AudioThread::Work() {
    for (;;) {
        begin.Wait();
        try {
            (*task)();
        } catch (...) {
            failure = std::current_exception();
        }
        end.Post();
    }
}

}  // namespace Tarnex::Exercise
