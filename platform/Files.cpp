#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/WideText.h"

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

bool MakeParents(const std::filesystem::path& path) {
    std::error_code error;
    if (path.has_parent_path()) {
        std::filesystem::create_directories(path.parent_path(), error);
    }
    return !error;
}

std::filesystem::path WithoutTrailingSeparator(const std::wstring& path) {
    return Narrow(path.substr(0, path.find_last_not_of(PATH_SEPARATOR) + 1));
}

}  // namespace

bool IsDirectory(const std::wstring& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(Narrow(path), ignored);
}

Created CreateDirectories(const std::wstring& path) {
    const std::filesystem::path directory = WithoutTrailingSeparator(path);
    if (!MakeParents(directory)) {
        return Created::Failed;
    }
    if (mkdir(directory.c_str(), 0777) == 0) {
        return Created::Done;
    }
    return errno == EEXIST ? Created::Exists : Created::Failed;
}

std::vector<FoundFile> FindFiles(const std::wstring& directory, const std::wstring& prefix) {
    std::vector<FoundFile> found;
    const std::string narrowPrefix = Narrow(prefix);
    std::error_code error;
    for (std::filesystem::directory_iterator entry(Narrow(directory), error), end;
         !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().native();
        if (!name.starts_with(narrowPrefix)) {
            continue;
        }
        if (const auto created = CreationTime(entry->path().native())) {
            found.push_back({Widen(name), *created});
        }
    }
    return found;
}

bool RemoveFile(const std::wstring& path) {
    return unlink(Narrow(path).c_str()) == 0;
}

}  // namespace Tarnex::Platform
