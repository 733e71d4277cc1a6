#pragma once

#include <filesystem>

#include "platform/Descriptor.h"

namespace Tarnex::Platform {

/// A new and empty folder for this user alone, in TMPDIR if that can be used, else where the system
/// has such folders.
class TemporaryFolder {
public:
    /// Throws `std::system_error` if there can't be one.
    TemporaryFolder();
    ~TemporaryFolder() { Remove(GetDescriptor()); }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Removes it with all that is in it, however deep that lies and whatever rights its folders
    /// have, and what took its place if a process moved it. Nothing may write into it meanwhile.
    /// What can't be removed is left. `descriptor`: the folder's, which may have another number in
    /// a child.
    void Remove(int descriptor) const;

    /// Of the folder, wherever it is; -1 if the system gives none.
    int GetDescriptor() const { return folder.Get(); }

    const std::filesystem::path path;  ///< absolute; where it was made

private:
    const Descriptor folder;
};

}  // namespace Tarnex::Platform
