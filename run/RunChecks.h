#pragma once

#include "codecs/CodecChecker.h"
#include "plugins/PluginChecker.h"
#include "run/CheckResult.h"
#include "run/Config.h"

namespace Tarnex::Core::Utils {

/// Runs and times the phases that the check type selects, plugins before codecs. Starts the media
/// core before the codec phase, without the plugins that were found broken or are to be disabled.
/// Catches nothing. Call it on the main thread.
[[nodiscard]] CheckResult RunChecks(PluginChecker& pluginChecker, CodecChecker& codecChecker,
                                    const Config& config);

}  // namespace Tarnex::Core::Utils
