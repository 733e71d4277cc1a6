#include "parent/Run.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstring>

#include "core/support/Text.h"
#include "platform/MappedFiles.h"

namespace Tarnex::Parent {
namespace {

using Core::Utils::ToFPSeconds;

constexpr std::size_t LAST_WORDS = 2000;            // bytes
constexpr std::size_t LARGEST_OUTPUT = 64'000'000;  // bytes; far above what any list takes

Platform::ProcessStart ToStart(const Job& job, const Names& environment) {
    return {job.program.native(), job.arguments, environment, job.keepOutput, job.ownHome};
}

}  // namespace

Run::Run(Job wanted, const Names& environment, CheckListener& listener, std::size_t index)
    : job(std::move(wanted)),
      process(ToStart(job, environment)),
      index(index),
      deadline(started + job.startTime),
      listener(listener),
      reader(
          AllTags(), [this](const Record& record) { Follow(record); },
          [this](std::string_view text) { job.follower.TakeText(text); }),
      allowed(job.startTime) {}

bool Run::Advance() {
    const auto report = process.TakeReport();
    while (Read() && report) {
    }
    if (report) {
        Finish(*report);
        return true;
    }
    const bool isLate = Clock::now() >= deadline;
    if (isLate) {
        late = true;
        deadline = Clock::time_point::max();
    }
    // Nothing more can be learned from a run whose open item closed standard error.
    if (isLate || (process.HasClosedError() && !job.follower.open.empty())) {
        process.End();
    }
    return false;
}

void Run::Stop() {
    stopped = true;
    process.End();
    const auto report = process.AwaitReport();
    while (Read()) {
    }
    Finish(report);
}

/// False if there was nothing.
bool Run::Read() {
    if (const auto program = process.GetProgram()) {
        job.follower.Believe(*program);
    }
    const std::string bytes = process.ReadError();
    if (!bytes.empty()) {
        listener.OnOutput(index, bytes);
        lastWords += bytes;
        lastWords.erase(0, lastWords.size() - std::min(lastWords.size(), LAST_WORDS));
        reader.Feed(bytes);
    }
    const std::string more = process.ReadOutput();
    output += more.substr(0, LARGEST_OUTPUT - std::min(LARGEST_OUTPUT, output.size()));
    return !bytes.empty() || !more.empty();
}

/// After its closing record nothing gives a run more time.
void Run::Follow(const Record& record) {
    const Clock::time_point now = Clock::now();
    const bool wasFinished = job.follower.finished;
    if (!late && job.follower.Take(record, now) && !wasFinished) {
        allowed = job.stepTime;
        deadline = std::min(now + allowed, started + job.wholeTime);
        startSeconds = startSeconds == 0 ? ToFPSeconds(now - started) : startSeconds;
        LookAtFiles();
    }
}

/// At the last item, because the process may be gone once the end of the phase was read.
void Run::LookAtFiles() {
    const auto program = process.GetProgram();
    const Follower& follower = job.follower;
    if (job.wantFiles && program &&
        (follower.finished || follower.begun.size() == follower.expected.size())) {
        files.merge(Platform::ListMappedFiles(*program));
    }
}

void Run::Finish(const Platform::ProcessReport& report) {
    if (report.startError != 0) {
        throw PhaseFailure("Can't start " + job.program.native() + ": " +
                           std::strerror(report.startError));
    }
    reader.Finish();
    survivors = report.survivors;
    end = ToEnd(report);
    seconds = ToFPSeconds(report.time - started);
    if (!stopped && report.keeperLost) {
        job.follower.EndUnwatched(report.time);
    } else if (!stopped) {
        job.follower.End(late || !report.ended ? FromEnd(end) : ClosedError(), report.time);
    }
}

RunEnd Run::ToEnd(const Platform::ProcessReport& report) const {
    if (late && report.ended) {
        return {.deadline = ToFPSeconds(allowed)};
    }
    if (WIFSIGNALED(report.status)) {
        return {.signal = Platform::SignalName(WTERMSIG(report.status))};
    }
    return {.status = WEXITSTATUS(report.status)};
}

}  // namespace Tarnex::Parent
