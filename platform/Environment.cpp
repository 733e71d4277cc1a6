#include "platform/Environment.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstdlib>
#include <stdexcept>

namespace Tarnex::Platform {
namespace {

namespace fs = boost::filesystem;

fs::path GetHome() {
    if (const auto home = GetEnvironment("HOME")) {
        return *home;
    }
    const passwd* user = getpwuid(getuid());
    return user == nullptr ? "" : user->pw_dir;
}

/// A relative path in such a variable is to be ignored.
std::optional<std::string> FindUserFolder(const char* variable, const char* belowHome) {
    const fs::path value = GetEnvironment(variable).value_or("");
    const fs::path folder = value.is_absolute() ? value : GetHome() / belowHome;
    return folder.is_absolute() ? std::optional(folder.native()) : std::nullopt;
}

}  // namespace

std::optional<std::string> GetEnvironment(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    if (value == nullptr || *value == '\0') {
        return std::nullopt;
    }
    return value;
}

bool SetEnvironment(const std::string& name, const std::string& value) {
    return setenv(name.c_str(), value.c_str(), 1) == 0;
}

std::vector<std::string> GetEnvironmentWithout(const std::vector<std::string>& beginnings) {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        if (std::ranges::none_of(beginnings,
                                 [&](const std::string& name) { return text.starts_with(name); })) {
            variables.emplace_back(text);
        }
    }
    return variables;
}

std::string GetProgramPath() {
    return fs::read_symlink("/proc/self/exe").string();
}

std::optional<std::string> FindUserDataFolder() {
    return FindUserFolder("XDG_DATA_HOME", ".local/share");
}

std::string GetUserStateFolder() {
    const auto folder = FindUserFolder("XDG_STATE_HOME", ".local/state");
    if (!folder) {
        throw std::runtime_error("there is no home: set HOME, or name the folders by options");
    }
    return *folder;
}

}  // namespace Tarnex::Platform
