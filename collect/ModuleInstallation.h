#pragma once

#include <string>
#include <vector>

#include "installation/Installation.h"
#include "platform/TemporaryFolder.h"

namespace Tarnex::Collect {

/// A file that somebody wants checked, and the plugins that it became.
struct WantedFile {
    boost::filesystem::path path;      ///< absolute
    std::vector<std::string> plugins;  ///< several for a bundle of several modules
    std::string reason{};              ///< why there are none
};

/// An installation for one check of a few modules, in a temporary folder that goes with this
/// object. Beside the programs it has nothing but them.
class ModuleInstallation {
public:
    /// `wanted`: modules and bundles of interfaces that others define; their names may be any.
    /// Throws a `std::exception` with the path at fault if there can't be an installation.
    ModuleInstallation(const Installations::Installation& programs,
                       const std::vector<std::string>& wanted);

    const Installations::Installation& Get() const { return installation; }
    const std::vector<WantedFile>& GetFiles() const { return files; }

    std::vector<std::string> GetPlugins() const;

    /// The file that the plugin is from; null if it is from none.
    const WantedFile* FindFile(const std::string& plugin) const;

private:
    Platform::TemporaryFolder folder;
    Installations::Installation installation;
    std::vector<WantedFile> files;
};

}  // namespace Tarnex::Collect
