#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/media/CoderType.h"

namespace Tarnex::Core {

/// Values by option name by module name.
using CoreOptions = std::map<std::string, std::map<std::string, std::vector<std::string>>>;

inline constexpr char MODULE_PLUGIN_LOADER[] = "PluginLoader";

/// Option of `MODULE_PLUGIN_LOADER`: names of plugins that the core doesn't start.
inline constexpr char OPT_DISABLED_PLUGINS[] = "DisabledPlugins";

/// The option key for the black-listed codecs of one coder type and one implementation, such as
/// "Codecs.Decoder.FFMPEG_IMPL".
inline std::string BlackListCodecOption(CoderType type, const std::string& implementation) {
    return "Codecs." + ToString(type) + "." + implementation;
}

}  // namespace Tarnex::Core
