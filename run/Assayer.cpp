#include "run/Assayer.h"

#include <QApplication>

#include "codecs/CodecChecker.h"
#include "core/support/Constants.h"
#include "core/support/Exception.h"
#include "core/support/ExceptionText.h"
#include "core/support/WatchDog.h"
#include "platform/ProcessEnd.h"
#include "plugins/PluginChecker.h"
#include "reporting/LogFiles.h"
#include "reporting/Logging.h"
#include "reporting/Statistics.h"
#include "run/CheckResult.h"
#include "run/CommandLine.h"
#include "run/Config.h"
#include "run/ExitCodes.h"
#include "run/QtEnvironment.h"
#include "run/RunChecks.h"
#include "run/Scopes.h"

namespace Tarnex::Core::Utils {
namespace {

constexpr char PRODUCT_NAME[] = "Assayer";
constexpr int MIN_LOG_SEVERITY = 0;
constexpr int MAX_LOG_AGE_DAYS = 10;

static_assert(EXIT_TIMED_OUT == WatchDog::EXIT_CODE);

/// Without log files the run goes on: all lines go to standard error.
void StartLogging() {
    static_cast<void>(InitLogging(PRODUCT_NAME, MIN_LOG_SEVERITY, MAX_LOG_AGE_DAYS));
}

/// Ends the process from the watch-dog's thread, whatever the main thread is doing.
void OnExpiry() {
    try {
        // Contract: parents match this text; keep it verbatim.
        LogLastTagged(ERROR_TAG, "Assayer closed by WatchDog!");
        FlushLogFiles();
    } catch (...) {  // NOLINT(bugprone-empty-catch): the process has to end in any case.
    }
    Platform::EndProcess(EXIT_TIMED_OUT);
}

int ChooseExitCode(const CheckResult& result) {
    const bool hasBrokenPlugins(result.brokenPlugins);
    const bool hasBrokenCodecs(result.brokenCodecs);
    if (hasBrokenPlugins && !hasBrokenCodecs) {
        return EXIT_BROKEN_PLUGINS;
    }
    if (!hasBrokenPlugins && hasBrokenCodecs) {
        return EXIT_BROKEN_CODECS;
    }
    if (hasBrokenPlugins && hasBrokenCodecs) {
        return EXIT_BROKEN_BOTH;
    }
    return result.errorInfo.empty() ? EXIT_CLEAN : EXIT_TOLERATED_ERRORS;
}

}  // namespace

int Assayer(int argc, char** argv) {
    try {
        const LoggingScope logging(StartLogging, ShutdownLogging);
        const MediaCoreScope mediaCore;
        Config config;
        if (!ParseCommandLine(argc, argv, config)) {
            return EXIT_REFUSED;
        }
        const DeinitScope deinit(config.checkType);
        PrepareQtEnvironment();
        WatchDog watchDog(static_cast<unsigned int>(config.checkTimeoutInSeconds), OnExpiry);
        watchDog.Start();
        const QApplication application(argc, argv);
        PluginChecker pluginChecker;
        CodecChecker codecChecker(config.isUsingMultithreadingCodecChecking);
        const CheckResult result = RunChecks(pluginChecker, codecChecker, config);
        ReportStatistics(pluginChecker, codecChecker, result.brokenPlugins, result.brokenCodecs);
        return ChooseExitCode(result);
    } catch (const Tarnex::Exception&) {
        LogTagged(ERROR_TAG, GetCurrentExceptionText());
        return EXIT_TARNEX_EXCEPTION;
    } catch (const std::exception&) {
        LogTagged(ERROR_TAG, GetCurrentExceptionText());
        return EXIT_STD_EXCEPTION;
    } catch (...) {
        LogTagged(ERROR_TAG, GetCurrentExceptionText());
        return EXIT_OTHER_EXCEPTION;
    }
}

}  // namespace Tarnex::Core::Utils
