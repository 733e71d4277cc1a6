#include "parent/Check.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <thread>

#include "assay/Commands.h"
#include "assay/Installations.h"
#include "assay/Known.h"
#include "assay/Machine.h"
#include "assay/Reporter.h"
#include "assay/Saving.h"
#include "collect/ModuleFile.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;
using Parent::Item;

constexpr unsigned int MEMORY_OF_JOB = 512 * 1024;  // kB

/// Turns SIGINT and SIGTERM into something to read, from here to the end of the process.
class StopSignals {
public:
    StopSignals() {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    }
    ~StopSignals() { close(descriptor); }

    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// The signal that came; none: 0.
    int Take() const {
        signalfd_siginfo info{};
        const bool came = read(descriptor, &info, sizeof info) == sizeof info;
        return came ? static_cast<int>(info.ssi_signo) : 0;
    }

    int descriptor;
};

/// In kB; more than any machine has if the kernel doesn't say.
std::uint64_t GetAvailableMemory() {
    std::ifstream file("/proc/meminfo");
    std::string key;
    for (std::uint64_t value = 0; file >> key >> value; file.ignore(100, '\n')) {
        if (key == "MemAvailable:") {
            return value;
        }
    }
    return UINT64_MAX;
}

unsigned int ChooseJobs(unsigned int wanted) {
    const std::uint64_t cores = std::max(1U, std::thread::hardware_concurrency());
    const auto best = std::clamp<std::uint64_t>(GetAvailableMemory() / MEMORY_OF_JOB, 1, cores);
    return wanted > 0 ? wanted : static_cast<unsigned int>(best);
}

Json DescribeOptions(const Arguments& arguments, unsigned int jobs) {
    return {{"check", arguments.check},
            {"plugins", arguments.plugins},
            {"implementations", arguments.implementations},
            {"codecs", arguments.codecs},
            {"item_time", arguments.itemTime},
            {"jobs", jobs},
            {"known", arguments.known}};
}

/// Keeps the files of the media core for the report, and spares codecs that are known.
class CheckReporter : public Reporter {
public:
    using Reporter::Reporter;
    void OnListing(const Parent::Listing& listing, std::vector<Item>& codecs) override {
        environment["codec_files"] = DescribeFiles(listing.files);
        CarryOver(codecs);
    }
    void CarryOver(std::vector<Item>& items) const {
        if (known) {
            Assay::CarryOver(*known, environment, saved.freshLists, items);
        }
    }

    Json environment = DescribeEnvironment();
    std::optional<Report> known;
};

std::vector<Item> ListPlugins(const fs::path& installation) {
    std::vector<Item> plugins = Parent::ListPlugins(installation);
    for (Item& plugin : plugins) {
        if (plugin.file && (plugin.file = ReadFileFacts(plugin.file->path))) {
            plugin.file->buildId = Collect::ReadBuildId(plugin.file->path);
        }
    }
    return plugins;
}

Parent::CheckResult RunCheck(const Parent::CheckOptions& options, CheckReporter& reporter,
                             Report& report) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const auto start = std::chrono::steady_clock::now();
    std::vector<Item> plugins = ListPlugins(options.application);
    reporter.CarryOver(plugins);
    Parent::CheckResult result = Parent::RunCheck(options, std::move(plugins), reporter);
    const auto end = std::chrono::steady_clock::now();
    report.started = ToIsoTime(now, false);
    report.seconds = std::chrono::duration<double>(end - start).count();
    return result;
}

void Fill(Report& report, Parent::CheckResult result, const SavedReport& saved) {
    report.complete = result.complete;
    report.problem = std::move(result.problem);
    report.notes = std::move(result.notes);
    report.runs = std::move(result.runs);
    report.items = std::move(result.items);
    for (Parent::RunFacts& run : report.runs) {
        saved.Finish(run.arguments);
    }
    for (Item& item : report.items) {
        saved.Finish(item.repro);
    }
}

int ChooseStatus(const Parent::CheckResult& result, int signal) {
    if (!result.complete) {
        return signal > 0 ? STATUS_SIGNAL + signal : STATUS_INCOMPLETE;
    }
    const bool isBad =
        std::ranges::any_of(result.items, [](const Item& item) { return IsBad(item.verdict); });
    return isBad || result.badEnd ? STATUS_BAD : STATUS_GOOD;
}

}  // namespace

int Check(const Arguments& arguments) {
    Terminal terminal(arguments.events ? stderr : stdout, arguments.quiet);
    const SavedReport saved(arguments.report.empty() ? GetStateFolder() / "report.json"
                                                     : fs::path(arguments.report));
    CheckReporter reporter(terminal, saved, arguments.events, arguments.log);
    if (!arguments.known.empty()) {
        reporter.known = ReadReport(arguments.known);
    }
    const Chosen installation = ChooseInstallation(arguments.app);
    terminal.Line("checking " + installation.directory.string() + " (" + installation.reason + ")");
    const StopSignals stop;
    const unsigned int jobs = ChooseJobs(arguments.jobs);
    Report report;
    report.machine = DescribeMachine();
    report.installation = installation.directory;
    report.options = DescribeOptions(arguments, jobs);
    const auto result = RunCheck({.plugins = arguments.check != "codecs",
                                  .codecs = arguments.check != "plugins",
                                  .application = installation.directory,
                                  .pluginNames = arguments.plugins,
                                  .implementations = arguments.implementations,
                                  .codecIds = arguments.codecs,
                                  .itemTime = std::chrono::seconds(arguments.itemTime),
                                  .jobs = jobs,
                                  .lists = saved.freshLists,
                                  .stop = stop.descriptor},
                                 reporter, report);
    report.environment = reporter.environment;
    Fill(report, result, saved);
    const int status = ChooseStatus(result, stop.Take());
    saved.Save(report);
    terminal.Summary(report);
    terminal.Line("report: " + saved.path.string());
    reporter.Close(report, status);
    return status;
}

}  // namespace Tarnex::Assay
