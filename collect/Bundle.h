#pragma once

#include <boost/filesystem/path.hpp>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "collect/ReadingCache.h"

namespace Tarnex::Collect {

/// Whether hosts treat the folder as an LV2 bundle, because of its name or a manifest in it.
bool IsBundle(const boost::filesystem::path& folder);

/// What hosts find in a bundle.
struct Bundle {
    /// Of its plugins. What isn't absolute is a URI of something else than a file; the others may
    /// not exist. A bundle's other shared objects aren't modules; most are user interfaces.
    std::set<boost::filesystem::path> binaries;
    std::vector<std::string> problems;  ///< why a plugin's binary wasn't found
};

/// Reads as hosts do: the manifest names the plugins, and their binaries or the files that do
/// (`rdfs:seeAlso`), which are read only then. Throws `Tarnex::Exception` with the reason, without
/// the path, if the manifest can't be read or isn't Turtle.
Bundle ReadBundle(const boost::filesystem::path& folder, ReadingCache& cache);

/// What a Turtle file says of one subject.
struct Statements {
    bool isPlugin = false;
    std::set<boost::filesystem::path> binaries;
    std::set<boost::filesystem::path> seeAlso;
};

/// By the subject's URI; only subjects of which it says any of that. `file` is where the text is
/// from. Throws as above.
std::map<std::string, Statements> ReadTurtle(const std::string& text,
                                             const boost::filesystem::path& file);

}  // namespace Tarnex::Collect
