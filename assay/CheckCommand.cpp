#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <fstream>
#include <optional>
#include <thread>

#include "assay/CommandLine.h"
#include "assay/ExitStatus.h"
#include "assay/Facts.h"
#include "assay/Folders.h"
#include "assay/Installations.h"
#include "assay/Known.h"
#include "assay/Reporter.h"
#include "assay/SavedReport.h"
#include "assay/StopSignals.h"
#include "assay/Summary.h"
#include "assay/Text.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Parent::Item;

constexpr std::uint64_t MEMORY_OF_JOB = 512ULL * 1024;  // kB

/// In kB; none if the kernel doesn't say.
std::optional<std::uint64_t> GetAvailableMemory() {
    std::ifstream file("/proc/meminfo");
    std::string key;
    for (std::uint64_t value = 0; file >> key >> value; file.ignore(100, '\n')) {
        if (key == "MemAvailable:") {
            return value;
        }
    }
    return std::nullopt;
}

unsigned int ChooseJobs(unsigned int wanted) {
    if (wanted > 0) {
        return wanted;
    }
    const unsigned int cores = std::max(1U, std::thread::hardware_concurrency());
    const auto memory = GetAvailableMemory();
    return memory ? static_cast<unsigned int>(
                        std::clamp<std::uint64_t>(*memory / MEMORY_OF_JOB, 1, cores))
                  : cores;
}

std::string GetTime() {
    const std::time_t now = std::time(nullptr);
    tm parts{};
    gmtime_r(&now, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text.data();
}

Json DescribeOptions(const CheckArguments& arguments, unsigned int jobs) {
    return {{"check", arguments.check},
            {"plugins", arguments.plugins},
            {"implementations", arguments.implementations},
            {"codecs", arguments.codecs},
            {"item_time", arguments.itemTime},
            {"jobs", jobs},
            {"known", arguments.known}};
}

Parent::CheckOptions MakeOptions(const CheckArguments& arguments, const fs::path& application) {
    Parent::CheckOptions options;
    options.plugins = arguments.check != "codecs";
    options.codecs = arguments.check != "plugins";
    options.application = application;
    options.pluginNames = arguments.plugins;
    options.implementations = arguments.implementations;
    options.codecIds = arguments.codecs;
    options.itemTime = std::chrono::seconds(arguments.itemTime);
    options.jobs = ChooseJobs(arguments.jobs);
    return options;
}

int ChooseStatus(const Report& report, bool badEnd) {
    if (!report.complete) {
        return StopSignals::Caught() != 0 ? STATUS_SIGNAL + StopSignals::Caught()
                                          : STATUS_INCOMPLETE;
    }
    const bool isBad =
        std::ranges::any_of(report.items, [](const Item& item) { return IsBad(item.verdict); });
    return isBad || badEnd ? STATUS_BAD : STATUS_GOOD;
}

class CheckCommand {
public:
    explicit CheckCommand(const CheckArguments& arguments)
        : arguments(arguments),
          terminal(arguments.events ? stderr : stdout, arguments.quiet),
          saved(arguments.report.empty() ? GetStateFolder() / "report.json"
                                         : fs::path(arguments.report)) {}

    int Run() {
        const Chosen installation = ChooseInstallation(arguments.app);
        terminal.Line("checking " + MakePrintable(installation.directory.string() + " (" +
                                                  installation.text + ")"));
        Begin(installation.directory);
        const int status = Check(MakeOptions(arguments, installation.directory));
        terminal.Line("report: " + MakePrintable(saved.Path().string()));
        return status;
    }

private:
    void Begin(const fs::path& installation) {
        report.started = GetTime();
        report.version = ASSAYER_VERSION;
        report.machine = DescribeMachine();
        report.environment = DescribeEnvironment();
        report.installation = installation;
        if (!arguments.known.empty()) {
            known.emplace(ReadReport(arguments.known), report.environment, saved.FreshLists());
        }
    }

    int Check(Parent::CheckOptions options) {
        const StopSignals stop;
        options.stop = stop.Descriptor();
        options.lists = saved.FreshLists();
        report.options = DescribeOptions(arguments, options.jobs);
        Reporter reporter(
            terminal, arguments.events, arguments.log,
            [&](const auto& listing, auto& codecs) { TakeListing(listing, codecs); },
            [&](Item item) { return saved.Finish(std::move(item)); });
        const bool badEnd = RunCheck(options, reporter);
        const int status = ChooseStatus(report, badEnd);
        saved.Save(report);
        terminal.ClearStatus();
        PrintSummary(terminal, report);
        reporter.OnEnd(report, status);
        reporter.Close();
        return status;
    }

    /// Fills the report; true if a run ended badly after its last item.
    bool RunCheck(const Parent::CheckOptions& options, Reporter& reporter) {
        const auto start = Clock::now();
        Parent::CheckResult result =
            Parent::RunCheck(options, ListPlugins(options.application), reporter);
        report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
        report.complete = result.complete;
        report.problem = std::move(result.problem);
        report.notes = std::move(result.notes);
        report.runs = std::move(result.runs);
        for (Item& item : result.items) {
            report.items.push_back(saved.Finish(std::move(item)));
        }
        return result.badEnd;
    }

    std::vector<Item> ListPlugins(const fs::path& application) const {
        std::vector<Item> plugins = Parent::ListPlugins(application);
        for (Item& plugin : plugins) {
            if (plugin.file) {
                plugin.file = ReadFileFacts(plugin.file->path);
            }
        }
        if (known) {
            known->CarryPlugins(plugins);
        }
        return plugins;
    }

    void TakeListing(const Parent::Listing& listing, std::vector<Item>& codecs) {
        Json& files = report.environment["codec_files"];
        files = DescribeFiles(listing.files);
        if (known) {
            known->CarryCodecs(files, codecs);
        }
    }

    const CheckArguments& arguments;
    Terminal terminal;
    SavedReport saved;
    Report report;
    std::optional<Known> known;
};

}  // namespace

int RunCheckCommand(const CheckArguments& arguments) {
    return CheckCommand(arguments).Run();
}

}  // namespace Tarnex::Assay
