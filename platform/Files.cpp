#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/filesystem.hpp>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <optional>
#include <system_error>

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

bool WriteInto(const std::string& file, std::string_view text) {
    errno = 0;
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    return !stream.fail();
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

bool IsReplaceable(const std::string& path) {
    boost::system::error_code ignored;
    return !boost::filesystem::exists(path, ignored) ||
           boost::filesystem::is_regular_file(path, ignored);
}

void ReplaceFile(const std::string& path, std::string_view text) {
    boost::system::error_code ignored;
    const std::string known = boost::filesystem::canonical(path, ignored).native();
    const std::string& target = known.empty() ? path : known;  // what a link leads to
    const std::string fresh =
        IsReplaceable(target) ? target + "." + std::to_string(getpid()) : target;
    if (!WriteInto(fresh, text) || std::rename(fresh.c_str(), target.c_str()) != 0) {
        const int error = errno;
        if (fresh != target) {
            RemoveFile(fresh);
        }
        throw std::system_error(error, std::generic_category(), "can't write " + path);
    }
}

}  // namespace Tarnex::Platform
