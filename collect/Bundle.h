#pragma once

#include <boost/filesystem/path.hpp>
#include <set>
#include <string>

namespace Tarnex::Collect {

/// Whether hosts treat the folder as an LV2 bundle, because of its name or a manifest in it.
bool IsBundle(const boost::filesystem::path& folder);

/// The files that the bundle's manifest names as binaries of plugins; absolute paths, which may not
/// exist. A bundle's other shared objects aren't modules; most are user interfaces. Throws
/// `Tarnex::Exception` with the reason, without the path, if the manifest can't be read or isn't
/// Turtle.
std::set<boost::filesystem::path> ReadBundle(const boost::filesystem::path& bundle);

/// Does the same with the text of a manifest.
std::set<boost::filesystem::path> ReadManifest(const std::string& text,
                                               const boost::filesystem::path& bundle);

}  // namespace Tarnex::Collect
