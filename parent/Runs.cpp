#include "parent/Runs.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <system_error>

#include "core/support/Text.h"

namespace Tarnex::Parent {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds PROGRESS_TIME{200};
constexpr std::size_t LAST_WORDS = 2000;  // bytes
/// In one go, so that a module that never stops writing doesn't keep us from the deadlines.
constexpr int MAX_READS = 64;

/// Without what would turn the records away from standard error.
Names CleanEnvironment() {
    Names kept;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string variable = *entry;
        if (!variable.starts_with("GLOG_") && !variable.starts_with("LOCALAPPDATA=")) {
            kept.push_back(variable);
        }
    }
    return kept;
}

Platform::ProcessStart ToStart(const Session& session, const Names& environment, const Job& job) {
    return {job.helper ? session.Helper() : session.Program(), job.arguments, environment,
            job.helper};
}

std::size_t AddFacts(const Session& session, const Job& job) {
    RunFacts facts{job.arguments, KilledBy{"SIGKILL"}, 0};
    if (job.helper) {
        facts.arguments.insert(facts.arguments.begin(), "assayer-list");
    }
    session.result.runs.push_back(std::move(facts));
    return session.result.runs.size() - 1;
}

/// Gives each piece that can be read now; forgets the descriptor at its end.
template <class Take>
void ReadSome(int& descriptor, const Take& take) {
    std::array<char, 16384> buffer;
    for (int i = 0; i < MAX_READS && descriptor >= 0; ++i) {
        const ssize_t size = read(descriptor, buffer.data(), buffer.size());
        if (size < 0) {
            return;
        }
        take(std::string_view(buffer.data(), static_cast<std::size_t>(size)));
        descriptor = size == 0 ? -1 : descriptor;
    }
}

/// The status of an error that isn't an item's, as the protocol has it.
bool ForbidsToGoOn(const Run& run) {
    const auto* exit = std::get_if<ExitStatus>(&run.Facts().end);
    if (exit == nullptr || run.GetJob().helper) {
        return false;
    }
    const Watch& watch = run.GetWatch();
    return (exit->status == 3 && watch.Begun().empty()) ||
           (exit->status >= 4 && exit->status <= 6 && watch.EndsWithError());
}

}  // namespace

Run::Run(Session& session, const Names& environment, Job wanted)
    : session(session),
      job(std::move(wanted)),
      index(AddFacts(session, job)),
      deadline(started + session.options.itemTime),
      reader([this](const Record& record) { Follow(record); }),
      process(ToStart(session, environment, job)),
      errorPipe(process.ErrorDescriptor()),
      outputPipe(process.OutputDescriptor()) {}

void Run::AddDescriptors(std::vector<pollfd>& descriptors) const {
    for (const int descriptor : {errorPipe, outputPipe, process.ReportDescriptor()}) {
        descriptors.push_back({descriptor, POLLIN, 0});
    }
}

bool Run::Advance() {
    const auto report = process.TakeReport();
    ReadError();
    ReadSome(outputPipe, [&](std::string_view bytes) { output += bytes; });
    if (report) {
        Finish(*report);
        return true;
    }
    if (errorPipe < 0 && !job.watch.Open().empty()) {  // Nothing can be learned any more.
        process.End();
    }
    if (!late && Clock::now() >= deadline) {
        late = true;
        deadline = Clock::time_point::max();
        process.End();
    }
    return false;
}

void Run::Stop() {
    process.End();
    pollfd event{process.ReportDescriptor(), POLLIN, 0};
    while (poll(&event, 1, -1) < 0) {
    }
    Advance();
}

void Run::ReadError() {
    ReadSome(errorPipe, [&](std::string_view bytes) {
        session.listener.OnOutput(index, bytes);
        lastWords += bytes;
        lastWords.erase(0, lastWords.size() - std::min(lastWords.size(), LAST_WORDS));
        reader.Feed(bytes);
    });
}

void Run::Follow(const Record& record) {
    const Clock::time_point now = Clock::now();
    const bool isFirst = job.watch.Begun().empty();
    if (!late && job.watch.Take(record, now)) {
        deadline = now + session.options.itemTime;
        startSeconds = isFirst ? Core::Utils::ToFPSeconds(now - started) : startSeconds;
    }
}

void Run::Finish(const Platform::ProcessReport& report) {
    if (report.startError != 0) {
        throw CheckFailure("Can't start " + ToStart(session, {}, job).program + ": " +
                           std::strerror(report.startError));
    }
    if (report.survivors[0] != '\0') {
        session.Note(std::string("Still running, SIGKILL doesn't end it: ") + report.survivors);
    }
    reader.Finish();
    RunFacts& facts = session.result.runs[index];
    facts.end = ToEnd(report);
    facts.seconds = Core::Utils::ToFPSeconds(report.time - started);
    job.watch.End(late || !report.ended ? FromEnd(facts.end) : ClosedError(), report.time);
}

RunEnd Run::ToEnd(const Platform::ProcessReport& report) const {
    if (late && report.ended) {
        return OverDeadline{Core::Utils::ToFPSeconds(session.options.itemTime)};
    }
    if (WIFSIGNALED(report.status)) {
        return KilledBy{Platform::SignalName(WTERMSIG(report.status))};
    }
    return ExitStatus{WEXITSTATUS(report.status)};
}

void RequireFirst(bool& repeated, const Run& run) {
    if (std::exchange(repeated, true)) {
        const Attempt end = FromEnd(run.Facts().end);
        throw PhaseFailure("Two runs ended before they named what they should touch (" +
                           std::string(ToString(end.verdict)) + ", " + end.reason +
                           "): " + run.LastWords());
    }
}

Runs::Runs(Session& session) : session(session), environment(CleanEnvironment()) {}

void Runs::Drain(const Next& next) {
    try {
        while (Fill(next), !active.empty()) {
            Await();
            AdvanceAll();
        }
    } catch (...) {
        for (const auto& run : std::exchange(active, {})) {
            run->Stop();
        }
        waiting.reset();
        throw;
    }
}

void Runs::Drain(std::deque<Job>& queue) {
    Drain([&]() -> std::optional<Job> {
        if (queue.empty()) {
            return std::nullopt;
        }
        Job job = std::move(queue.front());
        queue.pop_front();
        return job;
    });
}

Watch Runs::RunNow(Job job) {
    Watch watch;
    job.done = [&watch, done = std::move(job.done)](const Run& run) {
        watch = run.GetWatch();
        if (done) {
            done(run);
        }
    };
    std::deque<Job> queue;
    queue.push_back(std::move(job));
    Drain(queue);
    return watch;
}

void Runs::Fill(const Next& next) {
    while (active.size() < session.options.jobs &&
           (active.empty() || !active.front()->GetJob().alone)) {
        waiting = waiting ? std::move(waiting) : next();
        if (!waiting || (waiting->alone && !active.empty())) {
            return;
        }
        Job job = std::move(*waiting);
        waiting.reset();
        active.push_back(std::make_unique<Run>(session, environment, std::move(job)));
    }
}

void Runs::Await() {
    std::vector<pollfd> descriptors{{session.options.stop, POLLIN, 0}};
    Clock::time_point until = Clock::now() + PROGRESS_TIME;
    for (const auto& run : active) {
        run->AddDescriptors(descriptors);
        until = std::min(until, run->Deadline());
    }
    const auto wait = std::chrono::ceil<milliseconds>(until - Clock::now()).count();
    poll(descriptors.data(), descriptors.size(), static_cast<int>(std::max<long>(wait, 0)));
    if (descriptors.front().revents != 0) {
        throw CheckFailure("stopped");
    }
}

void Runs::AdvanceAll() {
    for (std::size_t i = 0; i < active.size();) {
        if (!active[i]->Advance()) {
            ++i;
            continue;
        }
        const std::unique_ptr<Run> run = std::move(active[i]);
        active.erase(active.begin() + static_cast<std::ptrdiff_t>(i));
        TakeEnd(*run);
    }
    TellProgress();
}

void Runs::TakeEnd(const Run& run) {
    if (ForbidsToGoOn(run)) {
        throw CheckFailure("Assayer can't check: " + run.GetWatch().LastError());
    }
    for (const std::string& name : run.GetWatch().Strays()) {
        session.Note("A record about " + name + " at a wrong place was ignored: a module wrote it");
    }
    run.GetJob().done(run);
}

void Runs::TellProgress() {
    const Clock::time_point now = Clock::now();
    if (now < lastProgress + PROGRESS_TIME / 2) {
        return;
    }
    lastProgress = now;
    Progress progress = session.progress;
    for (const auto& run : active) {
        const Watch& watch = run->GetWatch();
        const auto open = std::chrono::duration_cast<milliseconds>(now - watch.OpenSince());
        progress.done += watch.Attempts().size();
        if (!watch.Open().empty() && (progress.touched.empty() || open > progress.open)) {
            progress.touched = watch.Open();
            progress.open = open;
        }
    }
    session.listener.OnProgress(progress);
}

}  // namespace Tarnex::Parent
