#pragma once

#include <chrono>
#include <string>

namespace Tarnex::Core::Utils {

/// Takes blanks, tabs and line ends off both ends, in place. Returns its argument.
std::string& TrimAll(std::string& text);

inline double ToFPSeconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace Tarnex::Core::Utils
