#include "report/Lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <thread>

namespace Tarnex::Reports {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds PAUSE{10};

int Open(const boost::filesystem::path& path) {
    constexpr int flags = O_CLOEXEC | O_NOFOLLOW;
    const int folder = open(path.c_str(), flags | O_RDONLY | O_DIRECTORY);
    const bool isFolder = folder >= 0 || (errno != ENOTDIR && errno != ENOENT);
    return isFolder ? folder : open(path.c_str(), flags | O_RDWR | O_CREAT, 0600);
}

/// Whoever had the lock before may have removed or moved the file.
bool IsAt(int file, const boost::filesystem::path& path) {
    struct stat own {};
    struct stat there {};
    return fstat(file, &own) == 0 && lstat(path.c_str(), &there) == 0 &&
           own.st_dev == there.st_dev && own.st_ino == there.st_ino;
}

}  // namespace

Lock::Lock(const boost::filesystem::path& path, std::chrono::milliseconds wait) {
    const auto until = Clock::now() + wait;
    while (true) {
        file = Platform::Descriptor(Open(path));
        held =
            file.Get() >= 0 && flock(file.Get(), LOCK_EX | LOCK_NB) == 0 && IsAt(file.Get(), path);
        error = errno;
        if (held || file.Get() < 0 || Clock::now() >= until) {
            return;
        }
        std::this_thread::sleep_for(PAUSE);
    }
}

}  // namespace Tarnex::Reports
