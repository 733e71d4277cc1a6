#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <string>
#include <thread>
#include <unordered_map>

#include "core/support/Mutex.h"
#include "mediacore/SharedLibrary.h"

namespace Tarnex::Core {

/// Caches the result or the exception of each module file's load, so that each file is loaded once,
/// even if several plugins lead to it. Threads that ask for a file that is being loaded wait until
/// that is done. Thread-safe.
class LoadOnce {
public:
    using Load = std::function<void()>;

    /// Calls `load` unless it was called for this file before. Throws
    /// `Proc::CodecFactoryErrorException` for whatever `load` throws or threw then. Also throws if
    /// the load of this file asks for the same file, which would wait for itself.
    void operator()(const ModuleFile& file, const Load& load);

private:
    struct Outcome {
        std::atomic<std::thread::id> loader;  // while loading
        Mutex mutex;
        bool isKnown TARNEX_GUARDED_BY(mutex) = false;
        std::string plugin TARNEX_GUARDED_BY(mutex);  // the plugin that caused the load
        std::exception_ptr failure TARNEX_GUARDED_BY(mutex);
    };

    Outcome& GetOutcome(const std::string& path);

    Mutex mutex;
    // By file. Each outcome stays where it is.
    std::unordered_map<std::string, Outcome> outcomes TARNEX_GUARDED_BY(mutex);
};

}  // namespace Tarnex::Core
