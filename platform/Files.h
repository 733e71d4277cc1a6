#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace Tarnex::Platform {

inline constexpr wchar_t PATH_SEPARATOR = L'/';

/// Whether the path exists and is a directory.
bool IsDirectory(const std::wstring& path);

enum class Created {
    Done,
    Exists,  ///< something of this name is there already, be it a directory or not
    Failed
};

/// Makes a directory with all its missing parents.
Created CreateDirectories(const std::wstring& path);

struct FoundFile {
    std::wstring name;
    std::chrono::system_clock::time_point created;
};

/// The entries of a directory whose names begin with `prefix`; none where it can't be read. Where
/// the file system doesn't keep the time of creation, it is that of the last change.
std::vector<FoundFile> FindFiles(const std::wstring& directory, const std::wstring& prefix);

/// Removes a file or a link, never a directory. False if the file is still there.
bool RemoveFile(const std::wstring& path);

}  // namespace Tarnex::Platform
