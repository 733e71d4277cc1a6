#pragma once

#include <array>
#include <boost/filesystem/path.hpp>
#include <string_view>
#include <vector>

#include "core/media/PluginFactories.h"

namespace Tarnex::Collect {

/// A kind of module that other programs install.
struct ModuleKind {
    std::string_view factory;                     ///< loads them; their key in plugins.list
    std::array<std::string_view, 2> entryPoints;  ///< a module exports one of these; may be empty
    std::string_view variable;                    ///< if set, its folders replace the usual ones
    std::string_view libFolder;                   ///< usual folder in each folder of libraries
    std::array<std::string_view, 2> homeFolders;  ///< usual folders in $HOME; may be empty
};

inline constexpr std::array<ModuleKind, 4> MODULE_KINDS{{
    {Core::EFFECT_FACTORY, {"f0r_get_plugin_info"}, "FREI0R_PATH", "frei0r-1", {".frei0r-1/lib"}},
    {Core::FILTER_FACTORY, {"ladspa_descriptor"}, "LADSPA_PATH", "ladspa", {".ladspa"}},
    {Core::FILTER_FACTORY, {"lv2_descriptor", "lv2_lib_descriptor"}, "LV2_PATH", "lv2", {".lv2"}},
    {Core::ANALYZER_FACTORY, {"vampGetPluginDescriptor"}, "VAMP_PATH", "vamp", {"vamp", ".vamp"}},
}};

/// The kind of the binaries in bundles.
inline constexpr const ModuleKind& BUNDLED = MODULE_KINDS[2];

/// A folder to search. `kind` is what its modules should be; null if they may be of any kind.
struct SearchFolder {
    boost::filesystem::path path;
    const ModuleKind* kind = nullptr;
};

/// The folders to search for each kind: those in its variable, or, if the variable is unset or
/// empty, the usual folders that exist. Reads the environment.
std::vector<SearchFolder> GetUsualFolders();

}  // namespace Tarnex::Collect
