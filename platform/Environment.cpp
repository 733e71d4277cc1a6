#include "platform/Environment.h"

#include <unistd.h>

#include <algorithm>
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

std::wstring GetProgramPath() {
    return Widen(std::filesystem::read_symlink("/proc/self/exe").native());
}

}  // namespace Tarnex::Platform
