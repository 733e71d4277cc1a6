#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace Tarnex::Core::Utils {

/// Takes blanks, tabs and line ends off both ends, in place. Returns its argument.
std::string& TrimAll(std::string& text);

/// The pieces between commas, trimmed. Nothing comes after a comma at the end.
[[nodiscard]] std::vector<std::string> SplitAtCommas(const std::string& joined);

/// The same without empty pieces.
[[nodiscard]] std::vector<std::string> SplitNames(const std::string& joined);

[[nodiscard]] inline bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

inline double ToFPSeconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace Tarnex::Core::Utils
