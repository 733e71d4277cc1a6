#include "parent/Check.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <chrono>
#include <ctime>
#include <thread>

#include "assay/Commands.h"
#include "assay/Environment.h"
#include "assay/Reporter.h"
#include "assay/Saving.h"
#include "assay/Summary.h"
#include "collect/ModuleFile.h"
#include "collect/OwnInstallation.h"
#include "platform/Environment.h"
#include "platform/Machine.h"
#include "platform/Signals.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;

constexpr unsigned int MEMORY_OF_JOB = 512 * 1024;  // kB

unsigned int ChooseJobs(unsigned int wanted) {
    const std::uint64_t cores = std::max(1U, std::thread::hardware_concurrency());
    const auto best =
        std::clamp<std::uint64_t>(Platform::GetAvailableMemory() / MEMORY_OF_JOB, 1, cores);
    return wanted > 0 ? wanted : static_cast<unsigned int>(best);
}

Json DescribeOptions(const Arguments& arguments, const Parent::CheckOptions& options) {
    return {{"check", arguments.check},
            {"plugins", options.pluginNames},
            {"implementations", options.implementations},
            {"codecs", options.codecIds},
            {"item_time", options.itemTime.count()},
            {"jobs", options.jobs},
            {"known", arguments.known}};
}

std::vector<Item> ListPlugins(const fs::path& installation) {
    std::vector<Item> plugins = Parent::ListPlugins(installation);
    for (Item& plugin : plugins) {
        if (plugin.file && (plugin.file = ReadFileFacts(plugin.file->path))) {
            plugin.file->buildId = Collect::ReadBuildId(plugin.file->path);
        }
    }
    return plugins;
}

int ChooseStatus(const Report& report, int signal) {
    if (!report.complete) {
        return signal > 0 ? STATUS_SIGNAL + signal : STATUS_INCOMPLETE;
    }
    const auto isBad = [](const Item& item) { return IsBad(item.verdict); };
    return report.badEnd || std::ranges::any_of(report.items, isBad) ? STATUS_BAD : STATUS_GOOD;
}

std::string GetTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return ToIsoTime(now, false);
}

}  // namespace

int Check(const Arguments& arguments) {
    Platform::Terminal terminal(arguments.events ? stderr : stdout, arguments.quiet);
    const SavedReport saved(arguments.report.empty()
                                ? fs::path(Platform::GetUserStateFolder()) / "assayer/report.json"
                                : fs::path(arguments.report));
    Reporter reporter(arguments, terminal, saved);
    const Collect::Chosen installation = Collect::ChooseInstallation(arguments.app);
    terminal.Line("checking " + installation.directory.string() + " (" + installation.reason + ")");
    const Platform::StopSignals stop;
    Parent::CheckOptions options = arguments.options;
    options.plugins = arguments.check != "codecs";
    options.codecs = arguments.check != "plugins";
    options.application = installation.directory;
    options.jobs = ChooseJobs(options.jobs);
    options.lists = saved.freshLists;
    options.stop = stop.descriptor;
    Report report;
    report.started = GetTime();
    const auto start = std::chrono::steady_clock::now();
    std::vector<Item> plugins = ListPlugins(installation.directory);
    reporter.SpareKnown(plugins);
    static_cast<Parent::CheckResult&>(report) =
        Parent::RunCheck(options, std::move(plugins), reporter);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    report.seconds = time.count();
    report.machine = DescribeMachine();
    report.installation = installation.directory.string();
    report.options = DescribeOptions(arguments, options);
    report.environment = reporter.environment;
    const int status = ChooseStatus(report, stop.Take());
    saved.Save(report);
    PrintSummary(terminal, report);
    terminal.Line("report: " + saved.path.string());
    reporter.Close(report, status);
    return status;
}

}  // namespace Tarnex::Assay
