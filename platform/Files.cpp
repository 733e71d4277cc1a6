#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/filesystem.hpp>
#include <cerrno>
#include <optional>

namespace Tarnex::Platform {
namespace {

std::chrono::system_clock::time_point ToTimePoint(const statx_timestamp& time) {
    return std::chrono::system_clock::time_point(std::chrono::seconds(time.tv_sec) +
                                                 std::chrono::nanoseconds(time.tv_nsec));
}

std::optional<std::chrono::system_clock::time_point> CreationTime(const std::string& path) {
    struct statx status {};
    if (statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_CTIME, &status) !=
        0) {
        return std::nullopt;
    }
    const bool known = (status.stx_mask & STATX_BTIME) != 0;
    return ToTimePoint(known ? status.stx_btime : status.stx_ctime);
}

}  // namespace

bool CreateDirectories(const std::string& path) {
    const boost::filesystem::path directory =
        path.substr(0, path.find_last_not_of(PATH_SEPARATOR) + 1);
    boost::system::error_code ignored;  // If this fails, so does the last step.
    boost::filesystem::create_directories(directory.parent_path(), ignored);
    return mkdir(directory.c_str(), 0777) == 0 || errno == EEXIST;
}

std::vector<FoundFile> FindFiles(const std::string& directory, const std::string& prefix) {
    std::vector<FoundFile> found;
    boost::system::error_code error;
    for (boost::filesystem::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with(prefix)) {
            continue;
        }
        if (const auto created = CreationTime(entry->path().string())) {
            found.push_back({name, *created});
        }
    }
    return found;
}

bool RemoveFile(const std::string& path) {
    return unlink(path.c_str()) == 0;
}

}  // namespace Tarnex::Platform
