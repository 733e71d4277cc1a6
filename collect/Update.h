#pragma once

#include <string>
#include <vector>

#include "collect/CollectRecord.h"
#include "collect/ModuleFinder.h"
#include "installation/Installation.h"

namespace Tarnex::Collect {

/// What an update changed.
struct Changes {
    std::vector<std::string> linked;   ///< names whose link is new
    std::vector<std::string> removed;  ///< names whose link was removed
    std::vector<std::string> renamed;  ///< a text for each module whose wanted name was taken

    bool IsEmpty() const { return linked.empty() && removed.empty(); }
};

/// Adds those of the modules to the installation that it doesn't have: a link and a name in
/// plugins.list for each, names sorted. Removes the links and the names of modules that are gone,
/// if `record` says that they were made here. Changes nothing else, in the list or in the
/// directory. A module that was linked before keeps its name. Makes new links, then replaces the
/// list, then removes old links, so that the list never names a missing file. Keeps `record` true
/// and writes it. Throws `Tarnex::Exception`, `std::system_error` or
/// `boost::filesystem::filesystem_error` with the path at fault.
Changes UpdateInstallation(const Installations::Installation& installation,
                           const std::vector<FoundModule>& modules, CollectRecord& record);

/// What version 1.1 linked in the installation, which it didn't write down: all links of the list
/// to what isn't `source`'s.
CollectRecord FindUnrecordedLinks(const Installations::Installation& installation,
                                  const boost::filesystem::path& source);

}  // namespace Tarnex::Collect
