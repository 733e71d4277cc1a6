#pragma once

#include <filesystem>

namespace Tarnex::Platform {

/// A new and empty folder for this user alone, in TMPDIR if that can be used, else where the system
/// has such folders.
class TemporaryFolder {
public:
    /// Throws `std::system_error` if there can't be one.
    TemporaryFolder();
    ~TemporaryFolder() { Remove(); }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Removes it with all that is in it, however deep that lies and whatever rights its folders
    /// have. Nothing may write into it meanwhile. What can't be removed is left.
    void Remove() const;

    const std::filesystem::path path;  ///< absolute
};

}  // namespace Tarnex::Platform
