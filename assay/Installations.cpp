#include "assay/Installations.h"

#include <fmt/format.h>
#include <pwd.h>
#include <unistd.h>
#include <boost/filesystem.hpp>

#include <cstdlib>

#include "assay/Mirror.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;

fs::path GetVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

fs::path GetHome() {
    const fs::path home = GetVariable("HOME");
    const passwd* user = home.empty() ? getpwuid(getuid()) : nullptr;
    return user == nullptr ? home : user->pw_dir;
}

/// A relative path in such a variable is to be ignored.
fs::path GetBase(const char* variable, const char* belowHome) {
    const fs::path value = GetVariable(variable);
    fs::path base = value.is_absolute() ? value : GetHome() / belowHome;
    if (!base.is_absolute()) {
        throw Exception("there is no home: set HOME, or name the folders by options");
    }
    return base;
}

fs::path GetCommandFolder() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

}  // namespace

fs::path GetOwnInstallation() {
    return GetBase("XDG_DATA_HOME", ".local/share") / "assayer/app";
}

fs::path GetStateFolder() {
    return GetBase("XDG_STATE_HOME", ".local/state") / "assayer";
}

namespace {

Chosen Choose(const std::string& app) {
    if (!app.empty()) {
        return {fs::absolute(app).lexically_normal(), "as given"};
    }
    const fs::path folder = GetCommandFolder();
    const fs::path own = GetOwnInstallation();
    const auto source = GetSource(own);
    if (source == folder) {
        const bool renewed = Mirror(folder, own);
        return {own, fmt::format("your own, {} from {}", renewed ? "renewed" : "copied",
                                 folder.string())};
    }
    return {folder, source ? "the command's; your own is a copy of " + source->string()
                           : "the command's; assay collect adds this machine's plugins"};
}

}  // namespace

Chosen ChooseInstallation(const std::string& app) {
    Chosen chosen = Choose(app);
    if (!fs::exists(chosen.directory / "Assayer")) {
        throw Exception("there is no Assayer in " + chosen.directory.string());
    }
    return chosen;
}

bool MakeInstallation(const fs::path& directory) {
    const bool isOther = fs::exists(directory / "Assayer") && !GetSource(directory);
    return !isOther && Mirror(GetCommandFolder(), directory);
}

}  // namespace Tarnex::Assay
