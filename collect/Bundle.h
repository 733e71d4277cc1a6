#pragma once

#include <boost/filesystem/path.hpp>
#include <set>
#include <string>

namespace Tarnex::Collect {

/// Whether hosts take the folder for an LV2 bundle: by its name, or by the manifest in it.
bool IsBundle(const boost::filesystem::path& folder);

/// The files that the bundle's manifest names as binaries of plugins, absolute, whether they are
/// there or not. Other shared objects of a bundle, above all user interfaces, are no modules of
/// their own. Throws `Tarnex::Exception` with the reason, without the path, if the manifest can't
/// be read or isn't Turtle.
std::set<boost::filesystem::path> ReadBundle(const boost::filesystem::path& bundle);

/// The same from the manifest's text.
std::set<boost::filesystem::path> ReadManifest(const std::string& text,
                                               const boost::filesystem::path& bundle);

}  // namespace Tarnex::Collect
