#pragma once

#include <array>

namespace Tarnex::Core {

// The names of the factories, in `plugins.list` and in the program.
inline constexpr char EFFECT_FACTORY[] = "EffectFactory";
inline constexpr char FILTER_FACTORY[] = "FilterFactory";
inline constexpr char CODEC_FACTORY[] = "CodecFactory";
inline constexpr char MUXER_FACTORY[] = "MuxerFactory";
inline constexpr char PARSER_FACTORY[] = "ParserFactory";
inline constexpr char ANALYZER_FACTORY[] = "AnalyzerFactory";

/// All factories, in the order in which their plugins are checked.
inline constexpr std::array PLUGIN_FACTORIES{
    static_cast<const char*>(EFFECT_FACTORY), static_cast<const char*>(FILTER_FACTORY),
    static_cast<const char*>(CODEC_FACTORY),  static_cast<const char*>(MUXER_FACTORY),
    static_cast<const char*>(PARSER_FACTORY), static_cast<const char*>(ANALYZER_FACTORY)};

/// The plugin that is checked before all others. `plugins.list` doesn't name it.
inline constexpr char OGL_MANAGER[] = "OglManager";

/// The file in the program's directory that lists each factory's plugins.
inline constexpr char PLUGIN_LIST_FILE[] = "plugins.list";

}  // namespace Tarnex::Core
