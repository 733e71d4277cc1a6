#pragma once

#include <string>
#include <vector>

namespace Tarnex::Core::Utils {

// Contract: parents match these tags; keep them verbatim.
inline constexpr char STATISTICS_TAG[] = "STATISTICS";
inline constexpr char CODECS_TAG[] = "CODECS";
inline constexpr char ERROR_TAG[] = "ERROR";
inline constexpr char WARNING_TAG[] = "WARNING";
inline constexpr char TEST_CODEC_TAG[] = "TEST_CODEC";
inline constexpr char TESTED_CODECS_TAG[] = "TESTED_CODECS";
inline constexpr char PLUGINS_TAG[] = "PLUGINS";
inline constexpr char LOAD_PLUGIN_NAME_TAG[] = "LOAD_PLUGIN_NAME";
inline constexpr char LOADED_PLUGINS_TAG[] = "LOADED_PLUGINS";

/// Fills a position of the command line that has no value.
inline constexpr char EMPTY_VALUE[] = "-";

/// Plugins that may fail: they depend on an optional part of the operating system.
/// Never freed, because the watch-dog may end the process while the list is being read.
inline const std::vector<std::string>& WHITE_PLUGIN_LIST_FF =
    *new std::vector<std::string>{"MediaFoundationCodecs"};

}  // namespace Tarnex::Core::Utils
