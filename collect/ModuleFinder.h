#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "collect/ModuleKinds.h"

namespace Tarnex::Collect {

struct FoundModule {
    boost::filesystem::path path;  ///< absolute; a link in the last component isn't resolved
    const ModuleKind* kind;
    std::string name;  ///< the wanted name; several modules may want the same
};

struct LeftOut {
    boost::filesystem::path path;
    std::string reason;
};

struct Findings {
    std::vector<FoundModule> modules;  ///< each file once
    std::vector<LeftOut> leftOut;
};

/// Examines every file named "*.so" in the folders and their subfolders: folder by folder, each
/// sorted by path. Doesn't follow links to folders and skips the files directly in `installation`.
/// A module that exports the entry point of its folder's kind is of that kind; else of the first
/// kind whose entry point it exports; else of its folder's kind, so that the check reports why it
/// can't be loaded. In an LV2 bundle, even if the bundle is a link, examines only the files that
/// the manifest names as plugins' binaries.
Findings FindModules(const std::vector<SearchFolder>& folders,
                     const boost::filesystem::path& installation);

}  // namespace Tarnex::Collect
