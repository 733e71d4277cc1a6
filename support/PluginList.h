#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/support/ioPath.h"

namespace Tarnex::Core::Utils {

/// Plugin names by factory name.
using PluginLists = std::map<std::string, std::vector<std::string>>;

/// Reads a `plugins.list`: a list file whose keys are factory names. Throws `Tarnex::Exception`
/// that names the file and, if there is one, the line at fault. The file may be unreadable or
/// malformed, name an unknown factory, name a plugin by a path, or name no plugin at all (a
/// truncated file must not pass for a clean machine).
PluginLists ReadPluginLists(const ioPath& path);

/// Replaces the lines of the factories in `lists` in one step. Keeps comments and the lines of
/// other factories: those of `before`, if it is given, else the file's own. Throws
/// `std::system_error` that names the file if it can't be written, and then leaves the old file
/// untouched.
void ReplacePluginLists(const ioPath& path, const PluginLists& lists, const ioPath& before);
void ReplacePluginLists(const ioPath& path, const PluginLists& lists);

}  // namespace Tarnex::Core::Utils
