#include "parent/Check.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <chrono>
#include <ctime>
#include <memory>
#include <optional>
#include <thread>

#include "assay/Commands.h"
#include "assay/FileCheck.h"
#include "assay/Names.h"
#include "assay/Reporter.h"
#include "assay/Summary.h"
#include "assay/UserState.h"
#include "collect/ChosenInstallation.h"
#include "platform/Limits.h"
#include "platform/Machine.h"
#include "platform/Signals.h"
#include "report/Capture.h"
#include "report/CarryOver.h"
#include "report/Environment.h"
#include "report/OpenItems.h"
#include "report/Packages.h"
#include "report/Saving.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;
using Parent::Verdict;

constexpr unsigned int MEMORY_OF_JOB = 512 * 1024;  // kB
/// More would need more descriptors than some systems give.
constexpr std::uint64_t MOST_JOBS = 32;

unsigned int ChooseJobs(unsigned int wanted) {
    const std::uint64_t cores =
        std::clamp<std::uint64_t>(std::thread::hardware_concurrency(), 1, MOST_JOBS);
    const auto best =
        std::clamp<std::uint64_t>(Platform::GetAvailableMemory() / MEMORY_OF_JOB, 1, cores);
    return wanted > 0 ? wanted : static_cast<unsigned int>(best);
}

timespec GetTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

/// What the media core offers; nothing if it doesn't start, which the check itself looks into.
std::vector<Item> ListOffered(const Parent::CheckOptions& options,
                              Parent::CheckListener& listener) {
    try {
        const auto listing = Parent::AskForCodecs(options, listener);
        return listing ? ToItems(*listing) : std::vector<Item>();
    } catch (const Exception&) {
        return {};
    }
}

/// Replaces what the user typed by the exact names, before anything is checked. Throws
/// `UnknownName`.
void ResolveNames(Parent::CheckOptions& options, const std::vector<Item>& plugins,
                  Parent::CheckListener& listener) {
    options.pluginNames = FindNames(options.pluginNames, GetPlugins(plugins), "plugin");
    if (!options.codecs || (options.codecIds.empty() && options.implementations.empty())) {
        return;
    }
    if (const auto codecs = ListOffered(options, listener); !codecs.empty()) {
        options.codecIds = FindNames(options.codecIds, GetCodecs(codecs), "codec");
        options.implementations =
            FindNames(options.implementations, GetImplementations(codecs), "implementation");
    }
}

/// Hundreds may have been open together.
std::string JoinFirst(const std::set<std::string>& names) {
    constexpr std::size_t most = 10;
    const auto end =
        std::next(names.begin(), static_cast<std::ptrdiff_t>(std::min(names.size(), most)));
    const std::string more =
        names.size() > most ? fmt::format(" and {} more", names.size() - most) : "";
    return fmt::format("{}{}", fmt::join(names.begin(), end, ", "), more);
}

std::unique_ptr<Collect::ModuleInstallation> MakeModules(const Arguments& arguments) {
    if (arguments.files.empty()) {
        return nullptr;
    }
    const auto programs = arguments.app.empty() ? Installations::Installation::OfThisProgram()
                                                : Installations::Installation(arguments.app);
    return std::make_unique<Collect::ModuleInstallation>(programs, arguments.files);
}

/// One check, from the choice of the installation to the last event.
class Checking {
public:
    explicit Checking(const Arguments& arguments)
        : arguments(arguments),
          terminal(arguments.events ? stderr : stdout, arguments.quiet),
          modules(MakeModules(arguments)),
          chosen(modules ? Collect::Share(modules->Get(), "made for this check")
                         : Collect::ChooseInstallation(arguments.app)),
          state(GetState(chosen.installation)),
          saving(MakeSaving()),
          openItems(KeepsState() ? std::make_unique<Reports::OpenItems>(state.folder,
                                                                        arguments.options.depth)
                                 : nullptr),
          reporter(
              arguments, terminal, [this](Item& item) { FinishRepro(item); },
              [this](const std::vector<std::string>& names) { KeepOpen(names); }),
          options(MakeOptions()) {}

    int Run() {
        report.started = Reports::ToIsoTime(started, false);
        report.installation = chosen.installation.GetDirectory().string();
        terminal.Line("checking " + report.installation + " (" + chosen.reason + ")");
        for (const std::string& note : chosen.notes) {
            terminal.Line(note);
        }
        TellOfFreeze();
        if (!modules || !modules->GetPlugins().empty()) {
            CheckInstallation();
        } else {
            report.complete = true;
        }
        AddRefusedFiles();
        reporter.Accept(report);
        report.seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return Conclude();
    }

private:
    /// A check of single files, or with a report of its own, leaves the state as it is.
    bool KeepsState() const { return !modules && arguments.report.empty(); }

    Reports::Saving MakeSaving() const {
        if (KeepsState()) {
            return {state, started};
        }
        return Reports::Saving(arguments.report.empty()
                                   ? modules->Get().GetDirectory() / "report.json"
                                   : fs::path(arguments.report));
    }

    Parent::CheckOptions MakeOptions() const {
        Parent::CheckOptions made = arguments.options;
        made.plugins = arguments.check != "codecs";
        made.codecs = arguments.check != "plugins";
        if (arguments.check == "all") {  // What is named limits it to its kinds.
            const bool namesCodecs = !made.codecIds.empty() || !made.implementations.empty();
            made.plugins = !namesCodecs || !made.pluginNames.empty();
            made.codecs = namesCodecs || made.pluginNames.empty();
        }
        if (modules) {
            made.pluginNames = modules->GetPlugins();
        }
        made.application = chosen.installation.GetDirectory();
        made.jobs = ChooseJobs(made.jobs);
        made.stop = stop.descriptor;
        if (openItems) {
            const auto& suspects = openItems->GetSuspects();
            const auto& culprits = openItems->GetCulprits();
            made.last.insert(suspects.begin(), suspects.end());
            if (TakesOver()) {
                made.spared.insert(culprits.begin(), culprits.end());
            }
        }
        return made;
    }

    bool TakesOver() const { return arguments.onlyChanged || arguments.useKnown; }

    void TellOfFreeze() {
        std::set<std::string> last = options.last;
        std::erase_if(last, [this](const auto& name) { return options.spared.contains(name); });
        if (!last.empty()) {
            report.notes.push_back("The machine stopped while these were being checked: " +
                                   JoinFirst(last) + "; they come last and one at a time");
        }
        if (!options.spared.empty()) {
            report.notes.push_back("The machine stopped while this was being checked by itself: " +
                                   JoinFirst(options.spared) +
                                   "; it isn't touched now, only by a check without --known and "
                                   "--only-changed");
        }
    }

    void CheckInstallation() {
        std::vector<Item> plugins = Parent::ListPlugins(options.application);
        if (!modules) {
            ResolveNames(options, plugins, reporter);
        }
        known = ReadKnown();
        facts.emplace(chosen.installation);
        const Reports::CarryRules rules{arguments.onlyChanged, options.itemTime, options.depth};
        Parent::Carried carried = Reports::CarryOver(known, *facts, rules, options, plugins);
        Reports::AddFileFacts(plugins);
        listed = plugins;
        if (MustRun(plugins, carried)) {
            options.lists = saving.Open(report.notes);
        }
        std::vector<std::string> notes = std::move(report.notes);
        static_cast<Parent::CheckResult&>(report) =
            Parent::RunCheck(options, std::move(plugins), std::move(carried), reporter);
        report.notes.insert(report.notes.begin(), notes.begin(), notes.end());
    }

    Reports::Known ReadKnown() {
        if (!arguments.known.empty()) {
            return Reports::ReadKnown(arguments.known);
        }
        return TakesOver() ? state.Read(report.notes) : Reports::Known();
    }

    bool MustRun(const std::vector<Item>& plugins, const Parent::Carried& carried) const {
        const auto isOpen = [&](const Item& item) {
            return item.verdict == Verdict::NotReached && options.Wants(item);
        };
        const auto isUnlisted = [&](const Item& item) {
            return item.verdict == Verdict::Good && item.interface != "own" &&
                   options.Wants(item) && !carried.listed.contains(item.name);
        };
        return std::ranges::any_of(plugins, isOpen) ||
               std::ranges::any_of(carried.exercises, isOpen) ||
               (options.depth != "load" && std::ranges::any_of(plugins, isUnlisted)) ||
               (options.codecs &&
                (!carried.allCodecs || std::ranges::any_of(carried.codecs, isOpen)));
    }

    void AddRefusedFiles() {
        if (!modules) {
            return;
        }
        for (Item& item : report.items) {
            ReplaceRepro(item, *modules);
        }
        for (const Item& item : DescribeRefused(*modules)) {
            reporter.OnVerdict(item);
            report.items.push_back(item);
        }
    }

    int Conclude() {
        int status = GetStatus(report);
        const int signal = stop.Take();
        status = !report.complete && signal > 0 ? STATUS_SIGNAL + signal : status;
        if (!report.runs.empty() || !arguments.report.empty() || HasSpared()) {
            Describe();
            if (!Save()) {
                status = STATUS_INCOMPLETE;
            }
        }
        ForgetFreeze();
        PrintSummary(terminal, report);
        if (KeepsState() ? !saving.GetReport().empty() : !arguments.report.empty()) {
            terminal.Line("report: " + saving.GetReport().string());
        }
        reporter.Close(report, status);
        return status;
    }

    /// A verdict that no run gave.
    bool HasSpared() const {
        return std::ranges::any_of(report.items, [this](const Item& item) {
            return options.spared.contains(item.name) && !item.carried;
        });
    }

    /// Suspects that came through it are none any more, nor are those that went.
    void ForgetFreeze() const {
        if (!openItems || options.last.empty() || !report.complete) {
            return;
        }
        std::set<std::string> there, touched;
        for (const Item& item : report.items) {
            there.insert(item.name);
            if (!item.carried && !options.spared.contains(item.name)) {
                touched.insert(item.name);
            }
        }
        const bool isWhole = options.plugins && options.codecs && options.pluginNames.empty() &&
                             options.codecIds.empty() && options.implementations.empty() &&
                             options.skip.empty();
        openItems->Forget([&](const std::string& name) {
            return touched.contains(name) || (isWhole && !there.contains(name));
        });
    }

    void Describe() {
        report.machine = Reports::DescribeMachine();
        report.options = {
            {"check", arguments.check},       {"files", arguments.files},
            {"plugins", options.pluginNames}, {"implementations", options.implementations},
            {"codecs", options.codecIds},     {"skip", options.skip},
            {"depth", options.depth},         {"item_time", options.itemTime.count()},
            {"jobs", options.jobs},           {"known", arguments.known}};
        Reports::AddPackages(report.items);
        if (facts) {
            report.environment = facts->environment;
            Reports::AddGround(report, chosen.installation, *facts, known, listed, started);
        }
    }

    /// A report that was asked for and can't be written is told like what else went wrong.
    bool Save() {
        if (modules && arguments.report.empty()) {
            return true;
        }
        try {
            saving.Save(report, DescribeScope());
            return true;
        } catch (const std::exception& error) {
            report.notes.emplace_back(error.what());
            return false;
        }
    }

    Reports::Scope DescribeScope() const {
        Reports::Scope scope;
        for (const Item& plugin : listed) {
            scope.plugins.insert(plugin.name);
        }
        scope.exercises = options.plugins && options.depth != "load";
        if (options.codecs && options.implementations.empty() && options.codecIds.empty()) {
            scope.offered = Reports::GetCodecModules(listed);
        }
        return scope;
    }

    void FinishRepro(Item& item) {
        saving.Finish(item.repro);
        if (modules) {
            ReplaceRepro(item, *modules);
        }
    }

    void KeepOpen(const std::vector<std::string>& names) {
        if (openItems) {
            openItems->Write(names);
        }
    }

    const Arguments& arguments;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    Platform::Terminal terminal;
    const Platform::StopSignals stop;
    const std::unique_ptr<Collect::ModuleInstallation> modules;  // null: not single files
    const Collect::ChosenInstallation chosen;
    // After the installation was renewed: what changes from now on is no ground for a verdict.
    const timespec started = GetTime();
    const Reports::State state;
    Reports::Saving saving;
    const std::unique_ptr<Reports::OpenItems> openItems;
    Reporter reporter;
    Parent::CheckOptions options;
    std::optional<Reports::Facts> facts;
    Reports::Known known;
    std::vector<Item> listed;  // before the check
    Report report;
};

}  // namespace

int Check(const Arguments& arguments) {
    Platform::RaiseFileLimit();
    return Checking(arguments).Run();
}

}  // namespace Tarnex::Assay
