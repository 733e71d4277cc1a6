#include "platform/Environment.h"

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

std::string GetProgramPath() {
    return boost::filesystem::read_symlink("/proc/self/exe").string();
}

}  // namespace Tarnex::Platform
