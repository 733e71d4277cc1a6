#pragma once

#include "codecs/CodecChecker.h"
#include "plugins/PluginChecker.h"
#include "run/CheckResult.h"
#include "run/Config.h"

namespace Tarnex::Core::Utils {

/// Runs the phases that the check type calls for, plugins before codecs, and measures them. The
/// media core is started between the two with the plugins disabled that were found broken. Catches
/// nothing. Main thread.
[[nodiscard]] CheckResult RunChecks(PluginChecker& pluginChecker, CodecChecker& codecChecker,
                                    const Config& config);

}  // namespace Tarnex::Core::Utils
