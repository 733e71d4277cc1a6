#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "collect/ModuleKinds.h"

namespace Tarnex::Collect {

struct FoundModule {
    boost::filesystem::path path;  ///< absolute, as found: links of the last component stay
    const ModuleKind* kind;
    std::string name;  ///< what to call it; several may want the same
};

struct LeftOut {
    boost::filesystem::path path;
    std::string reason;
};

struct Findings {
    std::vector<FoundModule> modules;  ///< each file once
    std::vector<LeftOut> leftOut;
};

/// Looks at every file named "*.so" in the folders and below, folder after folder, each sorted by
/// path; links to folders aren't followed, and what lies directly in `installation` isn't looked
/// at. A module is of the kind of its folder if it exports that kind's entry point, else of the
/// first whose entry point it exports, else of its folder's kind: that it can't be loaded is for
/// the check to find. Of an LV2 bundle, also one behind a link, it looks at those files alone that
/// the manifest names as plugins' binaries.
Findings FindModules(const std::vector<SearchFolder>& folders,
                     const boost::filesystem::path& installation);

}  // namespace Tarnex::Collect
