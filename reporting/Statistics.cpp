#include "reporting/Statistics.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "codecs/CodecChecker.h"
#include "core/support/Constants.h"
#include "core/support/ModuleOptions.h"
#include "core/support/Text.h"
#include "plugins/PluginChecker.h"
#include "reporting/Logging.h"
#include "timing/PhaseTimer.h"

namespace Tarnex::Core::Utils {
namespace {

using Names = std::vector<std::string>;

constexpr std::size_t LONGEST_ERROR_INFO = 10240;  // bytes

std::string Join(const Names& names) {
    return fmt::format("{}", fmt::join(names, ","));
}

/// Formats with a point and six decimals, whatever locale a module has set.
std::string Seconds(std::chrono::nanoseconds time) {
    return fmt::format("{:f}", ToFPSeconds(time));
}

StatisticInfo::Section Verdicts(const Names& codecs, const Names& broken) {
    StatisticInfo::Section section;
    for (const std::string& codec : codecs) {
        section[codec] = Contains(broken, codec) ? "NO" : "YES";
    }
    return section;
}

}  // namespace

// Contract: parents match the names of sections and keys; keep them verbatim.
StatisticInfo GetPluginStatistics(const PluginChecker& checker, const Names& brokenPlugins) {
    Names success = checker.GetAllPlugins();
    const auto unsuccess = std::stable_partition(
        success.begin(), success.end(),
        [&brokenPlugins](const std::string& name) { return !Contains(brokenPlugins, name); });
    const Names failed(unsuccess, success.end());
    success.erase(unsuccess, success.end());
    const Names white = checker.GetWhiteBrokenPlugins();
    const Names errors = checker.GetFailedPlugins();

    StatisticInfo info;
    if (!failed.empty() || !white.empty() || !errors.empty()) {
        info["CORE_PLUGIN_CHECK"] = {
            {"SUCCESS", Join(success)},
            {"UNSUCCESS", Join(failed)},
            {"FF_UNSUCCESS", Join(white)},
            {"ERROR", Join(errors)},
            {"ERROR_INFO", checker.GetErrorInfo().substr(0, LONGEST_ERROR_INFO)}};
    }
    return info;
}

StatisticInfo GetCodecStatistics(const CodecChecker& checker, const BrokenCodecs& brokenCodecs) {
    const CodecLists& broken = brokenCodecs;
    StatisticInfo info;
    for (const auto& [key, codecs] : checker.GetAllCodecsByOption()) {
        const auto found = broken.find(key);
        if (found != broken.end()) {
            info[RemoveFormatType(key, FormatType::Codecs)] = Verdicts(codecs, found->second);
        }
    }
    return info;
}

void ReportStatistics(const PluginChecker& pluginChecker, const CodecChecker& codecChecker,
                      const BrokenPlugins& brokenPlugins, const BrokenCodecs& brokenCodecs) {
    StatisticInfo info = GetPluginStatistics(pluginChecker, brokenPlugins);
    if (brokenCodecs) {
        info.Add(GetCodecStatistics(codecChecker, brokenCodecs));
    }
    info["ASSAYER_WORK_TIME"] = {{"PLUGIN_TIME", Seconds(pluginPhaseTime)},
                                 {"CODEC_TIME", Seconds(codecPhaseTime)}};
    LogTagged(STATISTICS_TAG, std::string(info));
}

}  // namespace Tarnex::Core::Utils
