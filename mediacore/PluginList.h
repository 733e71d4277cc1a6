#pragma once

#include <string>
#include <vector>

namespace Tarnex::Core {

/// The plugins of a factory by the `plugins.list` beside the program, which is read once; none if
/// the list doesn't mention the factory. Throws `Tarnex::Exception` that names the file if the list
/// is none. Thread-safe.
std::vector<std::string> GetPlugins(const std::string& factory);

}  // namespace Tarnex::Core
