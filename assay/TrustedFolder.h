#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "report/Trust.h"

namespace Tarnex::Assay {

/// Makes a folder with a link to each module that is trusted, in a subfolder for each interface,
/// and with all LV2 bundles but those with a binary that isn't trusted: hosts need the
/// specifications and presets. Links of an earlier call that aren't wanted any more are removed.
/// Returns the lines for a shell that make hosts look there. Throws `Tarnex::Exception` for a
/// subfolder that holds anything else, or a `std::exception` with the path at fault.
std::vector<std::string> MakeTrustedFolder(const boost::filesystem::path& folder,
                                           const Reports::Trust& trust);

}  // namespace Tarnex::Assay
