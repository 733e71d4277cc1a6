#pragma once

#include <chrono>

namespace Tarnex::Core::Utils {

/// The time that the two phases of this run took. Written by the main thread.
inline std::chrono::nanoseconds pluginPhaseTime{0};
inline std::chrono::nanoseconds codecPhaseTime{0};

/// Adds the time of its scope to an accumulator, whatever way the scope ends.
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
