#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "mediacore/SharedLibrary.h"

namespace Tarnex::Core {

/// Loads each module file once in a process, also if several plugins lead to one file; one that
/// failed fails again. Threads that ask for a file that is being loaded wait for the end of that.
/// Thread-safe.
class LoadOnce {
public:
    using Load = std::function<void()>;

    /// Calls `load`, unless that was done for this file. Throws
    /// `Proc::CodecFactoryErrorException`, whatever `load` throws, and also if the load of this
    /// file asks for the file again: it would wait for itself.
    void operator()(const ModuleFile& file, const Load& load);

private:
    struct Outcome {
        std::once_flag once;
        std::atomic<std::thread::id> loader;  // while it loads
        std::string plugin;                   // that it was loaded for
        std::exception_ptr failure;
    };

    Outcome& GetOutcome(const std::string& path);

    std::mutex mutex;
    std::map<std::string, Outcome> outcomes;  // guarded by mutex; an outcome stays where it is
};

}  // namespace Tarnex::Core
