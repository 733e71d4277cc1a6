#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "collect/ModuleFinder.h"

namespace Tarnex::Collect {

/// What an update changed.
struct Changes {
    std::vector<std::string> linked;   ///< names whose link is new or points to another file now
    std::vector<std::string> removed;  ///< names whose link was removed
    std::vector<std::string> renamed;  ///< a text for each module whose wanted name was taken
    bool listWritten = false;
};

/// Updates the installation directory to hold exactly `modules` of all collected kinds: a link and
/// a name in plugins.list for each, names sorted. Changes nothing else, in the list or in the
/// directory: other factories and plugins that aren't links stay. A module that was linked before
/// keeps its name. Makes new links, then replaces the list, then removes old links, so that the
/// list never names a missing file. Throws `Tarnex::Exception` or
/// `boost::filesystem::filesystem_error` with the path at fault.
Changes UpdateInstallation(const boost::filesystem::path& directory,
                           const std::vector<FoundModule>& modules);

}  // namespace Tarnex::Collect
