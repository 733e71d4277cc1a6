#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace Tarnex::Core::Utils {

/// Removes blanks, tabs and line ends from both ends, in place. Returns its argument.
std::string& TrimAll(std::string& text);

/// Splits at commas and trims each piece. A comma at the end adds no empty piece.
[[nodiscard]] std::vector<std::string> SplitAtCommas(const std::string& joined);

/// Like `SplitAtCommas`, but drops empty pieces.
[[nodiscard]] std::vector<std::string> SplitNames(const std::string& joined);

[[nodiscard]] inline bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

inline double ToFPSeconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace Tarnex::Core::Utils
