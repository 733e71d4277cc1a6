#pragma once

#include <chrono>

namespace Tarnex::Core::Utils {

/// How long the two phases of this run took. Only the main thread writes them.
inline std::chrono::nanoseconds pluginPhaseTime{0};
inline std::chrono::nanoseconds codecPhaseTime{0};

/// Adds the duration of its scope to an accumulator, even if the scope ends by an exception.
class ScopedPhaseTimer {
public:
    explicit ScopedPhaseTimer(std::chrono::nanoseconds& sum)
        : start(std::chrono::steady_clock::now()), accumulator(sum) {}
    ~ScopedPhaseTimer() { accumulator += std::chrono::steady_clock::now() - start; }

    ScopedPhaseTimer(const ScopedPhaseTimer&) = delete;
    ScopedPhaseTimer& operator=(const ScopedPhaseTimer&) = delete;

private:
    std::chrono::steady_clock::time_point start;
    std::chrono::nanoseconds& accumulator;
};

}  // namespace Tarnex::Core::Utils
