#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/support/ioPath.h"

namespace Tarnex::Core::Utils {

/// Plugin names by factory name.
using PluginLists = std::map<std::string, std::vector<std::string>>;

/// Reads a `plugins.list`, a list file whose keys are factory names. Throws `Tarnex::Exception`
/// that names the file and, where one is at fault, the line: unreadable, malformed, a factory that
/// doesn't exist, a plugin named by a path, no plugin at all (a truncated file mustn't read as a
/// clean machine).
PluginLists ReadPluginLists(const ioPath& path);

/// Replaces the lines of the factories in `lists`, in one step; comments and the lines of other
/// factories stay as they are. Throws `Tarnex::Exception` that names the file if it can't be
/// written; the old one is untouched then.
void ReplacePluginLists(const ioPath& path, const PluginLists& lists);

}  // namespace Tarnex::Core::Utils
