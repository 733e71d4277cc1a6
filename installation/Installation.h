#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>
#include <string>
#include <vector>

#include "installation/Interface.h"
#include "support/PluginList.h"

namespace Tarnex::Installations {

/// A place in the order of the check; a plugin that two factories list has two.
struct PluginPlace {
    std::string name;
    std::string factory;
};

/// A directory that holds the programs, the modules, plugins.list and the sample files; knows where
/// each of them is. Nothing is read before it is asked for.
class Installation {
public:
    /// A relative path begins in the current directory, as it is now.
    explicit Installation(const boost::filesystem::path& directory);

    const boost::filesystem::path& GetDirectory() const { return directory; }

    boost::filesystem::path GetProgram() const;    ///< Assayer
    boost::filesystem::path GetLister() const;     ///< lists what the media core offers
    boost::filesystem::path GetExerciser() const;  ///< uses plugins
    boost::filesystem::path GetPluginList() const;
    boost::filesystem::path GetResources() const;
    boost::filesystem::path GetSamples() const;  ///< a folder in that

    /// Where the plugin's module or a link to it should be; there may be none.
    boost::filesystem::path GetModule(const std::string& plugin) const;
    bool HasModule(const std::string& plugin) const;

    /// Whether it is the user's own.
    bool IsOwn() const;

    /// The user's own, whether it is there or not; none for a user without a home.
    static std::optional<Installation> FindOwn();

    /// The one that the running program lies in.
    static Installation OfThisProgram();

    /// What plugins.list has; nothing if there is none. Throws `Tarnex::Exception` if it can't be
    /// read.
    Core::Utils::PluginLists ReadLists() const;

    /// `OglManager` first, then what plugins.list has. Throws `Tarnex::Exception` if that can't be
    /// read.
    std::vector<PluginPlace> ReadOrder() const;

    /// Whether Assayer finds a sample file for the codec id.
    bool HasSample(const std::string& codecId) const;

private:
    boost::filesystem::path directory;
};

/// Whether a file of an installation belongs to the programs, by its name: one of them, or a
/// library that they need. They have to lie together: a module is looked for beside the program's
/// real file.
bool IsProgramFile(const boost::filesystem::path& file);

/// The plugin whose module has this file name; empty for other files.
std::string GetPlugin(const boost::filesystem::path& file);

/// By the name and the folders of the file, links resolved, then by its entry points. A file that
/// can't be read has an interface of the factory that lists it, its usual one.
Interface FindInterface(const boost::filesystem::path& module, const std::string& factory);

/// The bundle of an LV2 or VST3 module, which is what hosts open; empty if it is in none. Follows
/// the links at `module` one by one: a bundle's binary may be a link that leaves it.
boost::filesystem::path GetBundle(boost::filesystem::path module, Interface interface);

}  // namespace Tarnex::Installations
