#pragma once

#include <array>
#include <boost/filesystem/path.hpp>
#include <string_view>
#include <vector>

#include "core/media/PluginFactories.h"

namespace Tarnex::Collect {

/// A kind of modules that other programs bring along.
struct ModuleKind {
    std::string_view factory;                     ///< who loads them; the key in plugins.list
    std::array<std::string_view, 2> entryPoints;  ///< hosts know them by one of these; may be empty
    std::string_view variable;                    ///< where set, its folders replace the usual ones
    std::string_view libFolder;                   ///< usual folder below each folder of libraries
    std::array<std::string_view, 2> homeFolders;  ///< usual folders below $HOME; may be empty
};

inline constexpr std::array<ModuleKind, 4> MODULE_KINDS{{
    {Core::EFFECT_FACTORY, {"f0r_get_plugin_info"}, "FREI0R_PATH", "frei0r-1", {".frei0r-1/lib"}},
    {Core::FILTER_FACTORY, {"ladspa_descriptor"}, "LADSPA_PATH", "ladspa", {".ladspa"}},
    {Core::FILTER_FACTORY, {"lv2_descriptor", "lv2_lib_descriptor"}, "LV2_PATH", "lv2", {".lv2"}},
    {Core::ANALYZER_FACTORY, {"vampGetPluginDescriptor"}, "VAMP_PATH", "vamp", {"vamp", ".vamp"}},
}};

/// The kind of the binaries that bundles name.
inline constexpr const ModuleKind& BUNDLED = MODULE_KINDS[2];

/// A folder to search. `kind` is what its modules are meant for, null where they may be of any.
struct SearchFolder {
    boost::filesystem::path path;
    const ModuleKind* kind = nullptr;
};

/// For each kind the folders of its variable, or where that isn't set or empty, those usual ones
/// that exist. Reads the environment.
std::vector<SearchFolder> GetUsualFolders();

}  // namespace Tarnex::Collect
