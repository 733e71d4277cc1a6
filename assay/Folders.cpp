#include "assay/Folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;

fs::path GetVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

fs::path GetHome() {
    fs::path home = GetVariable("HOME");
    if (const passwd* user = home.empty() ? getpwuid(getuid()) : nullptr) {
        home = user->pw_dir;
    }
    if (!home.is_absolute()) {
        throw Exception("there is no home: set HOME, or name the folders by options");
    }
    return home;
}

/// A relative path in such a variable is to be ignored.
fs::path GetBase(const char* variable, const char* belowHome) {
    const fs::path value = GetVariable(variable);
    return value.is_absolute() ? value : GetHome() / belowHome;
}

}  // namespace

fs::path GetCommandFolder() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

fs::path GetOwnInstallation() {
    return GetBase("XDG_DATA_HOME", ".local/share") / "assayer/app";
}

fs::path GetStateFolder() {
    return GetBase("XDG_STATE_HOME", ".local/state") / "assayer";
}

}  // namespace Tarnex::Assay
