#include "parent/Runs.h"

#include <poll.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "core/support/Text.h"
#include "platform/Environment.h"

namespace Tarnex::Parent {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds PROGRESS_TIME{200};

bool IsFine(const RunEnd& end) {
    return end.status == 0 || (end.status >= 7 && end.status <= 10);
}

bool WritesStatistics(Work work) {
    return work == Work::LoadPlugins || work == Work::TestCodecs;
}

/// What should touch something, but named nothing.
bool NamedNothing(const Follower& follower) {
    return !follower.expected.empty() && follower.begun.empty() && !follower.finished;
}

/// The status of an error that isn't an item's, as the protocol has it.
bool IsErrorOfRun(const Run& run) {
    const int status = run.end.status.value_or(0);
    return status >= 3 && status <= 6 && !run.job.follower.lastError.empty();
}

}  // namespace

bool EndsBadly(const Run& run) {
    const Follower& follower = run.job.follower;
    const bool isClosed = follower.closed || !WritesStatistics(follower.work);
    return follower.finished && !(IsFine(run.end) && isClosed);
}

Runs::Runs(const Limits& limits, CheckListener& listener, CheckResult& result)
    : limits(limits),
      listener(listener),
      result(result),
      // These would turn the records away from standard error.
      environment(Platform::GetEnvironmentWithout({"GLOG_", "LOCALAPPDATA="})) {}

void Runs::Drain(const Next& next, const Take& take) {
    try {
        while (Fill(next), !active.empty()) {
            Await();
            AdvanceAll(take);
        }
    } catch (...) {
        StopAll(take);
        throw;
    }
}

/// What goes wrong here doesn't keep the other runs from telling what they saw, and isn't the
/// reason why all are stopped.
void Runs::StopAll(const Take& take) {
    waiting.clear();
    for (const auto& run : std::exchange(active, {})) {
        try {
            run->Stop();
            AddFacts(*run);
            take(*run);
        } catch (const std::exception&) {
            continue;
        }
    }
}

void Runs::RunAll(std::vector<Job> jobs, const Take& take) {
    std::stable_partition(jobs.begin(), jobs.end(), [](const Job& job) { return !job.quiet; });
    auto job = jobs.begin();
    const auto next = [&] {
        return job == jobs.end() ? std::nullopt : std::optional(std::move(*job++));
    };
    Drain(next, take);
}

void Runs::Fill(const Next& next) {
    while (active.size() < limits.jobs && (active.empty() || !active.front()->job.quiet)) {
        if (waiting.empty()) {
            std::optional<Job> job = next();
            if (!job) {
                return;
            }
            waiting.push_back(std::move(*job));
        }
        if (waiting.front().quiet && !active.empty()) {
            return;
        }
        Job job = std::move(waiting.front());
        waiting.pop_front();
        Start(std::move(job));
    }
}

void Runs::Start(Job job) {
    RunFacts facts{.arguments = job.arguments, .end = {}, .seconds = 0};
    if (job.follower.work != Work::LoadPlugins && job.follower.work != Work::TestCodecs) {
        facts.arguments.insert(facts.arguments.begin(), job.program.filename().native());
    }
    TellOpen(job);
    try {
        active.push_back(
            std::make_unique<Run>(std::move(job), environment, listener, result.runs.size()));
    } catch (const std::system_error& error) {
        throw CheckFailure(error.what());
    }
    result.runs.push_back(std::move(facts));
}

void Runs::TellOpen(const Job& job) {
    Names names = job.follower.expected;
    names.insert(names.end(), job.unnamed.begin(), job.unnamed.end());
    for (const auto& run : active) {
        std::ranges::move(run->job.follower.Untouched(), std::back_inserter(names));
    }
    listener.OnOpen(names);
}

void Runs::Await() {
    std::vector<pollfd> descriptors{{limits.stop, POLLIN, 0}};
    Clock::time_point until = std::min(Clock::now() + PROGRESS_TIME, limits.until);
    for (const auto& run : active) {
        run->process.AddTo(descriptors);
        until = std::min(until, run->deadline);
    }
    const auto wait = std::chrono::ceil<milliseconds>(until - Clock::now()).count();
    poll(descriptors.data(), descriptors.size(), static_cast<int>(std::max<long>(wait, 0)));
    if (descriptors.front().revents != 0) {
        throw CheckFailure("stopped");
    }
    if (Clock::now() >= limits.until) {
        throw CheckFailure("The time for the whole check is up");
    }
}

void Runs::AdvanceAll(const Take& take) {
    for (std::size_t i = 0; i < active.size();) {
        if (!active[i]->Advance()) {
            ++i;
            continue;
        }
        const std::unique_ptr<Run> run = std::move(active[i]);
        active.erase(active.begin() + static_cast<std::ptrdiff_t>(i));
        Conclude(*run, take);
    }
    TellProgress();
}

void Runs::Conclude(const Run& run, const Take& take) {
    AddFacts(run);
    const Follower& follower = run.job.follower;
    if (!follower.unreadList.empty()) {
        throw CheckFailure("Assayer couldn't read the list " + follower.unreadList);
    }
    if (NamedNothing(follower)) {
        Repeat(run);
    } else {
        take(run);
    }
}

void Runs::AddFacts(const Run& run) {
    result.runs[run.index].end = run.end;
    result.runs[run.index].seconds = run.seconds;
    strays.Add(run.job.follower.strays);
    if (run.job.follower.work == Work::TestCodecs) {
        result.codecFiles.insert(run.files.begin(), run.files.end());
    }
    if (!run.survivors.empty()) {
        result.notes.push_back("Still running, SIGKILL doesn't end it: " + run.survivors);
    }
    if (EndsBadly(run) && result.badEnd.empty()) {
        result.badEnd = DescribeEnd(run.end);
        result.badEnd += IsFine(run.end) ? " before its last record" : "";
    }
}

void Runs::Repeat(const Run& run) {
    if (!run.job.repeated) {
        Job again = run.job;
        again.repeated = true;
        again.follower = Follower(again.follower.work, again.follower.expected);
        waiting.push_front(std::move(again));
        return;
    }
    if (IsErrorOfRun(run)) {
        throw CheckFailure("Assayer can't check: " + run.job.follower.lastError);
    }
    throw PhaseFailure("Two runs ended before they named what they should touch (" +
                       FromEnd(run.end).reason + "): " + run.lastWords);
}

void Runs::TellProgress() {
    const Clock::time_point now = Clock::now();
    if (now < lastProgress + PROGRESS_TIME / 2) {
        return;
    }
    lastProgress = now;
    Progress current = progress;
    for (const auto& run : active) {
        const Follower& follower = run->job.follower;
        const auto open = std::chrono::duration_cast<milliseconds>(now - follower.openSince);
        current.done += follower.attempts.size();
        if (!follower.open.empty() && (current.touched.empty() || open > current.open)) {
            current.touched = follower.open;
            current.open = open;
        }
    }
    current.done = std::min(current.done, current.total);
    listener.OnProgress(current);
}

}  // namespace Tarnex::Parent
