#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace Tarnex::Platform {

inline constexpr char PATH_SEPARATOR = '/';

/// Makes a directory with all its missing parents. True also if something of this name is there
/// already, be it a directory or not.
[[nodiscard]] bool CreateDirectories(const std::string& path);

struct FoundFile {
    std::string name;
    std::chrono::system_clock::time_point created;
};

/// The entries of a directory whose names begin with `prefix`; none where it can't be read. Where
/// the file system doesn't keep the time of creation, it is that of the last change.
[[nodiscard]] std::vector<FoundFile> FindFiles(const std::string& directory,
                                               const std::string& prefix);

/// Removes a file or a link, never a directory. False if the file is still there.
bool RemoveFile(const std::string& path);

}  // namespace Tarnex::Platform
