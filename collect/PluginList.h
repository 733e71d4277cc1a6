#pragma once

#include <boost/filesystem/path.hpp>
#include <map>
#include <string>
#include <vector>

namespace Tarnex::Collect {

/// Plugin names by factory.
using PluginNames = std::map<std::string, std::vector<std::string>>;

/// Reads a plugins.list; none at `path` is an empty one. Throws `Tarnex::Exception` with file and
/// line for what isn't of its form.
PluginNames ReadPluginList(const boost::filesystem::path& path);

/// Replaces the lines of the factories in `names`, in one step; comments and the lines of other
/// factories stay as they are. Throws `Tarnex::Exception` with the path if it can't be written.
void ReplaceInPluginList(const boost::filesystem::path& path, const PluginNames& names);

}  // namespace Tarnex::Collect
