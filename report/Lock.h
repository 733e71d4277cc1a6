#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>

#include "platform/Process.h"

namespace Tarnex::Reports {

/// Holds the lock of a file, which is made if it isn't there, or of a folder. The system frees it
/// when the process ends, however that happens.
class Lock {
public:
    /// Waits that long at most.
    Lock(const boost::filesystem::path& path, std::chrono::milliseconds wait);

    bool IsHeld() const { return held; }
    int GetError() const { return error; }  ///< why not; EWOULDBLOCK if another has it
    int GetFile() const { return file.Get(); }

private:
    Platform::Descriptor file;
    bool held = false;
    int error = 0;
};

}  // namespace Tarnex::Reports
