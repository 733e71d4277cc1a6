#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "collect/ModuleFinder.h"

namespace Tarnex::Collect {

/// What an update did.
struct Changes {
    std::vector<std::string> linked;   ///< names whose link was made or turned to another file
    std::vector<std::string> removed;  ///< names whose link was removed
    std::vector<std::string> renamed;  ///< a text for each module whose own name was taken
    bool listWritten = false;
};

/// Makes the installation directory hold exactly `modules` of the kinds of others: a link and an
/// entry in plugins.list for each, entries sorted by name. What isn't a link under one of these
/// factories stays, in the list and in the directory. A module that was linked before keeps its
/// name. The list is replaced when all its new links are there, and old links go after that, so
/// that it never names a missing file. Throws `Tarnex::Exception` or
/// `boost::filesystem::filesystem_error` with the path at fault.
Changes UpdateInstallation(const boost::filesystem::path& directory,
                           const std::vector<FoundModule>& modules);

}  // namespace Tarnex::Collect
