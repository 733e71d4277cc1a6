#include "platform/Environment.h"

#include <unistd.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstdlib>

namespace Tarnex::Platform {

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
    return boost::filesystem::read_symlink("/proc/self/exe").string();
}

}  // namespace Tarnex::Platform
