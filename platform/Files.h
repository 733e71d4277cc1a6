#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace Tarnex::Platform {

inline constexpr char PATH_SEPARATOR = '/';

/// Creates a directory and its missing parents. Also true if anything with this name exists
/// already, whether it is a directory or not.
[[nodiscard]] bool CreateDirectories(const std::string& path);

struct FoundFile {
    std::string name;
    std::chrono::system_clock::time_point created;
};

/// The entries of a directory whose names begin with `prefix`; empty if it can't be read. `created`
/// is the time of the last change if the file system doesn't store the time of creation.
[[nodiscard]] std::vector<FoundFile> FindFiles(const std::string& directory,
                                               const std::string& prefix);

/// Removes a file or a link, but never a directory. Returns false if it couldn't be removed.
bool RemoveFile(const std::string& path);

}  // namespace Tarnex::Platform
