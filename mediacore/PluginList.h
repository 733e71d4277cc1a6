#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/support/ioPath.h"

namespace Tarnex::Core {

/// Plugin names by factory name.
using PluginLists = std::map<std::string, std::vector<std::string>>;

/// Reads a `plugins.list`. Throws `Tarnex::Exception` that names the file and, where one is at
/// fault, the line: unreadable, malformed, a factory that doesn't exist, a name with a slash.
PluginLists ReadPluginLists(const ioPath& path);

/// The plugins of a factory by the `plugins.list` beside the program, which is read once; none if
/// the list doesn't mention the factory. Throws as `ReadPluginLists` does. Thread-safe.
std::vector<std::string> GetPlugins(const std::string& factory);

}  // namespace Tarnex::Core
