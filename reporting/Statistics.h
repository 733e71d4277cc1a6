#pragma once

#include <string>
#include <vector>

#include "core/support/BrokenCodecs.h"
#include "core/support/BrokenPlugins.h"
#include "core/support/StatisticInfo.h"

namespace Tarnex::Core::Utils {

class CodecChecker;
class PluginChecker;

/// Logs the record that sums up a run: what the checkers found and how long the phases took. Call
/// it once, after both checkers have finished.
void ReportStatistics(const PluginChecker& pluginChecker, const CodecChecker& codecChecker,
                      const BrokenPlugins& brokenPlugins, const BrokenCodecs& brokenCodecs);

/// The plugins' section; no section if no plugin failed.
StatisticInfo GetPluginStatistics(const PluginChecker& checker,
                                  const std::vector<std::string>& brokenPlugins);

/// One section for each tested option key that has broken codecs: "YES" for each codec of the key
/// that works, "NO" for each that doesn't.
StatisticInfo GetCodecStatistics(const CodecChecker& checker, const BrokenCodecs& brokenCodecs);

}  // namespace Tarnex::Core::Utils
