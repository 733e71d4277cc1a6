#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/media/CoderType.h"

namespace Tarnex::Core {

/// Module name to option name to values.
using CoreOptions = std::map<std::string, std::map<std::string, std::vector<std::string>>>;

inline constexpr char MODULE_PLUGIN_LOADER[] = "PluginLoader";

/// Of `MODULE_PLUGIN_LOADER`: names of plugins that the core leaves out.
inline constexpr char OPT_DISABLED_PLUGINS[] = "DisabledPlugins";

/// The key under which the codecs of one coder type and one implementation are black-listed, such
/// as "Codecs.Decoder.FFMPEG_IMPL".
inline std::string BlackListCodecOption(CoderType type, const std::string& implementation) {
    return "Codecs." + ToString(type) + "." + implementation;
}

}  // namespace Tarnex::Core
