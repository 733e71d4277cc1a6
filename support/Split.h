#pragma once

#include <string>
#include <vector>

namespace Tarnex::Core::Utils {

/// Splits at commas, trims the pieces and drops the empty ones.
std::vector<std::string> SplitNames(const std::string& joined);

}  // namespace Tarnex::Core::Utils
