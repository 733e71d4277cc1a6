#pragma once

#include <algorithm>
#include <array>
#include <boost/filesystem/path.hpp>
#include <string_view>
#include <vector>

#include "installation/Interface.h"

namespace Tarnex::Collect {

/// How deep hosts look into a folder of an interface's path.
enum class Depth {
    Files,   ///< only at the files right in it
    Folders  ///< into folders too, however deep; in bundles, their own rules hold
};

/// A kind of module that other programs install.
struct ModuleKind {
    Installations::Interface interface;
    std::string_view variable;                    ///< names folders; empty: there is none
    bool adds;                                    ///< to the usual folders; else replaces them
    std::string_view libFolder;                   ///< usual folder in each folder of libraries
    std::array<std::string_view, 2> homeFolders;  ///< usual folders in $HOME; may be empty
    std::string_view extension;                   ///< of its modules' files or bundles
    Depth depth;
    std::string_view suffix = {};  ///< of its plugins' names

    /// Loads them; their key in plugins.list.
    constexpr std::string_view GetFactory() const {
        return Installations::TraitsOf(interface).factory;
    }
};

/// LV2's hosts look at the folders right in a folder of the path, which are its bundles.
inline constexpr std::array<ModuleKind, 6> MODULE_KINDS{{
    {Installations::Interface::Frei0r,
     "FREI0R_PATH",
     false,
     "frei0r-1",
     {".frei0r-1/lib"},
     ".so",
     Depth::Folders},
    {Installations::Interface::Ladspa,
     "LADSPA_PATH",
     false,
     "ladspa",
     {".ladspa"},
     ".so",
     Depth::Files},
    {Installations::Interface::Lv2, "LV2_PATH", false, "lv2", {".lv2"}, ".lv2", Depth::Files},
    {Installations::Interface::Vamp,
     "VAMP_PATH",
     false,
     "vamp",
     {"vamp", ".vamp"},
     ".so",
     Depth::Files},
    {Installations::Interface::Clap,
     "CLAP_PATH",
     true,
     "clap",
     {".clap"},
     ".clap",
     Depth::Folders,
     ".clap"},
    {Installations::Interface::Vst3,
     "",
     false,
     "vst3",
     {".vst3"},
     ".vst3",
     Depth::Folders,
     ".vst3"},
}};

// Those whose modules hosts know by their place alone.
inline constexpr const ModuleKind& LV2 = MODULE_KINDS[2];
inline constexpr const ModuleKind& CLAP = MODULE_KINDS[4];
inline constexpr const ModuleKind& VST3 = MODULE_KINDS[5];

/// A folder to search. `kind` is what its modules should be; null if they may be of any kind.
struct SearchFolder {
    boost::filesystem::path path;
    const ModuleKind* kind = nullptr;
};

/// In each folder of links to good modules that `assay` makes for hosts. Where hosts were told to
/// search there, what was left out still has to be checked.
inline constexpr const char* TRUSTED_MARK = ".assayer-trusted";

/// The folders that hosts search for each kind: those in its variable and the usual ones that
/// exist. A folder in a variable that holds `TRUSTED_MARK` counts as not named there. Reads the
/// environment.
std::vector<SearchFolder> GetUsualFolders();

}  // namespace Tarnex::Collect
