#pragma once

#include <boost/filesystem/path.hpp>

namespace Tarnex::Collect {

/// Keeps an installation as it is: checks share it, and whoever changes it needs it alone. Held by
/// the object, and by processes forked meanwhile. Where the file system knows no locks, nothing is
/// kept and nobody waits.
class InstallationLock {
public:
    /// `directory` has to be there. Takes nothing yet.
    explicit InstallationLock(const boost::filesystem::path& directory);
    InstallationLock(InstallationLock&& other) noexcept;
    InstallationLock& operator=(InstallationLock&&) = delete;
    ~InstallationLock();

    /// False if another process holds it.
    [[nodiscard]] bool TryAlone();

    /// Waits for whoever changes the installation.
    void Share();

private:
    int fd;
};

}  // namespace Tarnex::Collect
