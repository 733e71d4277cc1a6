#include "parent/Session.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <boost/filesystem.hpp>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <system_error>
#include <utility>

#include "core/support/Constants.h"
#include "core/support/ModuleOptions.h"
#include "platform/Environment.h"

namespace Tarnex::Parent {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds PROGRESS_TIME{200};
/// Of the program's command line, and the most that it takes for a time.
constexpr std::size_t POSITIONS = 10;
constexpr std::uint64_t MOST_SECONDS = 4294967295;

/// The status of an error that isn't an item's, as the protocol has it.
bool ForbidsToGoOn(const Run& run) {
    const std::optional<int>& status = run.end.status;
    return !run.job.helper && ((status == 3 && run.job.watch.begun.empty()) ||
                               (status >= 4 && status <= 6 && run.job.watch.failedItself));
}

/// After all that it should touch.
bool EndsBadly(const Run& run) {
    const std::optional<int>& status = run.end.status;
    const bool isFine = status == 0 || (status >= 7 && status <= 10);
    return run.job.watch.finished && !isFine;
}

}  // namespace

Session::Session(const CheckOptions& options, CheckListener& listener, CheckResult& result)
    : options(options),
      listener(listener),
      result(result),
      order(ReadPluginOrder(options.application)),
      // These would turn the records away from standard error.
      environment(Platform::GetEnvironmentWithout({"GLOG_", "LOCALAPPDATA="})) {}

void Session::Drain(const Next& next, const std::function<void(const Run&)>& take) {
    try {
        while (Fill(next), !active.empty()) {
            Await();
            AdvanceAll(take);
        }
    } catch (...) {
        waiting.clear();
        for (const auto& run : std::exchange(active, {})) {
            run->Stop();
            AddFacts(*run);
            take(*run);
        }
        throw;
    }
}

void Session::RunAll(std::vector<Job> jobs, const std::function<void(const Run&)>& take) {
    std::stable_partition(jobs.begin(), jobs.end(), [](const Job& job) { return !job.alone; });
    auto job = jobs.begin();
    const auto next = [&] {
        return job == jobs.end() ? std::nullopt : std::optional(std::move(*job++));
    };
    Drain(next, take);
}

Watch Session::RunOne(const Job& job) {
    Watch watch;
    RunAll({job}, [&](const Run& run) { watch = run.job.watch; });
    return watch;
}

void Session::Fill(const Next& next) {
    while (active.size() < options.jobs && (active.empty() || !active.front()->job.alone)) {
        if (waiting.empty()) {
            std::optional<Job> job = next();
            if (!job) {
                return;
            }
            waiting.push_back(std::move(*job));
        }
        if (waiting.front().alone && !active.empty()) {
            return;
        }
        Start(std::move(waiting.front()));
        waiting.pop_front();
    }
}

void Session::Start(Job job) {
    RunFacts facts{.arguments = job.arguments, .end = {}, .seconds = 0};
    if (job.helper) {
        facts.arguments.insert(facts.arguments.begin(), HELPER);
    }
    try {
        active.push_back(std::make_unique<Run>(options, listener, result.runs.size(), environment,
                                               std::move(job)));
    } catch (const std::system_error& error) {
        throw CheckFailure(error.what());
    }
    result.runs.push_back(std::move(facts));
}

void Session::Await() {
    std::vector<pollfd> descriptors{{options.stop, POLLIN, 0}};
    Clock::time_point until = Clock::now() + PROGRESS_TIME;
    for (const auto& run : active) {
        run->process.AddTo(descriptors);
        until = std::min(until, run->deadline);
    }
    const auto wait = std::chrono::ceil<milliseconds>(until - Clock::now()).count();
    poll(descriptors.data(), descriptors.size(), static_cast<int>(std::max<long>(wait, 0)));
    if (descriptors.front().revents != 0) {
        throw CheckFailure("stopped");
    }
}

void Session::AdvanceAll(const std::function<void(const Run&)>& take) {
    for (std::size_t i = 0; i < active.size();) {
        if (!active[i]->Advance()) {
            ++i;
            continue;
        }
        const std::unique_ptr<Run> run = std::move(active[i]);
        active.erase(active.begin() + static_cast<std::ptrdiff_t>(i));
        AddFacts(*run);
        if (!IsToRepeat(*run)) {
            take(*run);
        }
    }
    TellProgress();
}

void Session::AddFacts(const Run& run) {
    result.runs[run.index].end = run.end;
    result.runs[run.index].seconds = run.seconds;
}

/// Also takes what the end tells of more than items.
bool Session::IsToRepeat(const Run& run) {
    const Watch& watch = run.job.watch;
    if (!run.survivors.empty()) {
        Note("Still running, SIGKILL doesn't end it: " + run.survivors);
    }
    for (const std::string& name : watch.strays) {
        Note("A record about " + name + " at a wrong place was ignored: a module wrote it");
    }
    result.badEnd = result.badEnd || EndsBadly(run);
    if (ForbidsToGoOn(run)) {
        throw CheckFailure("Assayer can't check: " + watch.lastError);
    }
    if (watch.expected.empty() || watch.finished || !watch.begun.empty()) {
        return false;
    }
    if (run.job.repeated) {
        throw PhaseFailure("Two runs ended before they named what they should touch (" +
                           FromEnd(run.end).reason + "): " + run.lastWords);
    }
    Job again = run.job;
    again.repeated = true;
    again.watch = Watch(watch.kind, watch.expected);
    waiting.push_front(std::move(again));
    return true;
}

void Session::TellProgress() {
    const Clock::time_point now = Clock::now();
    if (now < lastProgress + PROGRESS_TIME / 2) {
        return;
    }
    lastProgress = now;
    Progress current = progress;
    for (const auto& run : active) {
        const Watch& watch = run->job.watch;
        const auto open = std::chrono::duration_cast<milliseconds>(now - watch.openSince);
        current.done += watch.attempts.size();
        if (!watch.open.empty() && (current.touched.empty() || open > current.open)) {
            current.touched = watch.open;
            current.open = open;
        }
    }
    current.done = std::min(current.done, current.total);
    listener.OnProgress(current);
}

/// The time at the second position is one that no run reaches, because each item's own limit ends
/// it before.
Job Session::MakeJob(ItemKind kind, const Names& expected,
                     const std::map<std::size_t, std::string>& positions) const {
    const auto each = static_cast<std::uint64_t>(options.itemTime.count());
    Job job;
    job.arguments = Names(POSITIONS, Core::Utils::EMPTY_VALUE);
    job.arguments[0] = kind == ItemKind::Plugin ? "plugins" : "codecs";
    job.arguments[1] = std::to_string(std::min(MOST_SECONDS, (expected.size() + 2) * each));
    for (const auto& [position, text] : positions) {
        job.arguments[position - 1] = text.empty() ? Core::Utils::EMPTY_VALUE : text;
    }
    job.watch = Watch(kind, expected);
    return job;
}

std::string Session::WriteList(const std::string& name, const Names& plugins) const {
    if (plugins.empty()) {
        return "";
    }
    std::string path = (boost::filesystem::absolute(options.lists) / name).native();
    boost::system::error_code ignored;
    boost::filesystem::create_directories(options.lists, ignored);
    std::ofstream file(path, std::ios::binary);
    file << Core::Utils::ModuleOptionsToString({{"Plugins.Listed", plugins}},
                                               Core::Utils::FormatType::Plugins);
    if (!file.flush()) {
        throw CheckFailure("Can't write \"" + path + "\": " + std::strerror(errno));
    }
    return path;
}

void Session::Tell(const Item& item) {
    if (told.insert(&item).second) {
        listener.OnVerdict(item);
    }
}

void Session::Note(const std::string& text) {
    if (!Contains(result.notes, text)) {
        result.notes.push_back(text);
    }
}

std::string Join(const Names& names) {
    return fmt::to_string(fmt::join(names, ","));
}

Names ToRepro(const CheckOptions& options, const Names& arguments) {
    Names command{(options.application / PROGRAM).native()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

}  // namespace Tarnex::Parent
