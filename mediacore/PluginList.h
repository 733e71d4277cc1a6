#pragma once

#include <string>
#include <vector>

namespace Tarnex::Core {

/// The factory's plugins in the `plugins.list` beside the program; empty if the list doesn't name
/// the factory. Reads the list once. Throws `Tarnex::Exception` that names the file if it can't be
/// read or is malformed. Thread-safe.
std::vector<std::string> GetPlugins(const std::string& factory);

}  // namespace Tarnex::Core
