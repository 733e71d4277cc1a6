#pragma once

#include <exception>
#include <map>
#include <mutex>
#include <string>

namespace Tarnex::Core {

/// Remembers by module file what its load gave or threw: a module is initialised once in a process,
/// also if several plugins lead to one file, and one that failed fails again in the same words.
/// Thread-safe.
template <class Result>
class LoadOnce {
public:
    /// The result of `load` for this file, which is called unless it was before.
    template <class Load>
    const Result& operator()(const std::string& file, Load load) {
        const std::lock_guard lock(mutex);
        const auto [place, isNew] = outcomes.try_emplace(file);
        Outcome& outcome = place->second;
        if (isNew) {
            try {
                outcome.result = load();
            } catch (...) {
                outcome.failure = std::current_exception();
            }
        }
        if (outcome.failure) {
            std::rethrow_exception(outcome.failure);
        }
        return outcome.result;
    }

private:
    struct Outcome {
        Result result{};
        std::exception_ptr failure;
    };

    std::mutex mutex;
    std::map<std::string, Outcome> outcomes;
};

}  // namespace Tarnex::Core
