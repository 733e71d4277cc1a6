#pragma once

#include <string>
#include <vector>

#include "core/support/BrokenCodecs.h"
#include "core/support/BrokenPlugins.h"
#include "core/support/StatisticInfo.h"

namespace Tarnex::Core::Utils {

class CodecChecker;
class PluginChecker;

/// Writes the one line that sums up a run: what the checkers found and how long the phases took.
/// To be called once, when both checkers are done.
void ReportStatistics(const PluginChecker& pluginChecker, const CodecChecker& codecChecker,
                      const BrokenPlugins& brokenPlugins, const BrokenCodecs& brokenCodecs);

/// The section of the plugins; an empty record if none failed.
StatisticInfo GetPluginStatistics(const PluginChecker& checker,
                                  const std::vector<std::string>& brokenPlugins);

/// A section for each option key that was tested and has broken codecs, with "YES" for each codec
/// of that key that works and "NO" for each that doesn't.
StatisticInfo GetCodecStatistics(const CodecChecker& checker, const BrokenCodecs& brokenCodecs);

}  // namespace Tarnex::Core::Utils
