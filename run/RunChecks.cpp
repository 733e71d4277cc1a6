#include "run/RunChecks.h"

#include "core/media/CoreManager.h"
#include "core/support/ModuleOptions.h"
#include "timing/PhaseTimer.h"

namespace Tarnex::Core::Utils {
namespace {

void RunPluginPhase(PluginChecker& checker, const Config& config, CheckResult& result) {
    const ScopedPhaseTimer timer(pluginPhaseTime);
    if (config.brokenPlugins) {
        checker.SetKnownBrokenPlugins(config.brokenPlugins);
    }
    if (!config.lastFailedLoadPlugin.empty()) {
        checker.SetLastFailedLoadPlugin(config.lastFailedLoadPlugin);
    }
    checker.Check();
    result.brokenPlugins = BrokenPlugins(checker.GetBrokenPlugins());
    result.errorInfo += checker.GetErrorInfo();
}

/// Does nothing if the core is already started.
void StartMediaCore(const BrokenPlugins& disabledPlugins) {
    CoreManager& core = CoreManager::Instance();
    if (core.IsInitialized()) {
        return;
    }
    CoreOptions options;
    SetModuleOption(options, MODULE_PLUGIN_LOADER, OPT_DISABLED_PLUGINS, disabledPlugins);
    core.Initialize(std::function<void()>(), options, nullptr, nullptr, true);
    core.WaitUntilInitialized();
    core.GetComputingResourceManager()->computingResourcesFlag = true;
}

void RunCodecPhase(CodecChecker& checker, const Config& config, CheckResult& result) {
    const ScopedPhaseTimer timer(codecPhaseTime);
    BrokenPlugins disabledPlugins = result.brokenPlugins;
    disabledPlugins.Add(config.extraDisabledPlugins);
    StartMediaCore(disabledPlugins);
    checker.SetVerifiableCodecImpls(config.verifiableCodecImpls);
    checker.SetVerifiableCodecs(config.verifiableCodecs);
    if (config.brokenCodecs) {
        checker.SetKnownBrokenCodecs(config.brokenCodecs);
    }
    if (!config.lastFailedCodecsTest.empty()) {
        checker.SetLastFailedCodecsTest(config.lastFailedCodecsTest);
    }
    result.brokenCodecs = BrokenCodecs(checker.Check());
    result.errorInfo += checker.GetErrorInfo();
}

}  // namespace

CheckResult RunChecks(PluginChecker& pluginChecker, CodecChecker& codecChecker,
                      const Config& config) {
    CheckResult result;
    pluginPhaseTime = codecPhaseTime = std::chrono::nanoseconds::zero();
    if (config.checkType == CheckType::Plugins || config.checkType == CheckType::All) {
        RunPluginPhase(pluginChecker, config, result);
    }
    if (config.checkType == CheckType::Codecs || config.checkType == CheckType::All) {
        RunCodecPhase(codecChecker, config, result);
    }
    return result;
}

}  // namespace Tarnex::Core::Utils
