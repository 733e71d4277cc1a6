#include "platform/Environment.h"

#include <cstdlib>
#include <filesystem>

#include "platform/WideText.h"

namespace Tarnex::Platform {

std::optional<std::wstring> GetEnvironment(const std::wstring& name) {
    const char* value = std::getenv(Narrow(name).c_str());
    if (value == nullptr || *value == '\0') {
        return std::nullopt;
    }
    return Widen(value);
}

bool SetEnvironment(const std::wstring& name, const std::wstring& value) {
    return setenv(Narrow(name).c_str(), Narrow(value).c_str(), 1) == 0;
}

std::wstring GetProgramPath() {
    return Widen(std::filesystem::read_symlink("/proc/self/exe").native());
}

}  // namespace Tarnex::Platform
