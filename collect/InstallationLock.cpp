#include "collect/InstallationLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace Tarnex::Collect {

// The directory itself, so that nothing has to be written into one that isn't ours.
InstallationLock::InstallationLock(const boost::filesystem::path& directory)
    : fd(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

InstallationLock::InstallationLock(InstallationLock&& other) noexcept
    : fd(std::exchange(other.fd, -1)) {}

InstallationLock::~InstallationLock() {
    if (fd >= 0) {
        close(fd);
    }
}

bool InstallationLock::TryAlone() {
    return flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void InstallationLock::Share() {
    while (flock(fd, LOCK_SH) != 0 && errno == EINTR) {
    }
}

}  // namespace Tarnex::Collect
