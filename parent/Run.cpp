#include "parent/Run.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstring>

#include "core/support/Text.h"
#include "parent/Installation.h"

namespace Tarnex::Parent {
namespace {

using Core::Utils::ToFPSeconds;

constexpr std::size_t LAST_WORDS = 2000;  // bytes

Platform::ProcessStart ToStart(const CheckOptions& options, const Names& environment,
                               const Job& job) {
    return {(options.application / (job.helper ? HELPER : PROGRAM)).native(), job.arguments,
            environment, job.helper};
}

}  // namespace

Run::Run(const CheckOptions& options, CheckListener& listener, std::size_t index,
         const Names& environment, Job wanted)
    : job(std::move(wanted)),
      process(ToStart(options, environment, job)),
      index(index),
      deadline(Clock::now() + options.itemTime),
      options(options),
      listener(listener),
      reader([this](const Record& record) { Follow(record); }) {}

bool Run::Advance() {
    const auto report = process.TakeReport();
    Read();
    if (report) {
        Finish(*report);
        return true;
    }
    if (Clock::now() >= deadline) {
        late = true;
        deadline = Clock::time_point::max();
    }
    // Nothing more can be learned from a run whose open item closed standard error.
    if (late || (process.HasClosedError() && !job.watch.open.empty())) {
        process.End();
    }
    return false;
}

void Run::Stop() {
    stopped = true;
    process.End();
    const auto report = process.AwaitReport();
    Read();
    Finish(report);
}

void Run::Read() {
    if (const std::string bytes = process.ReadError(); !bytes.empty()) {
        listener.OnOutput(index, bytes);
        reader.Feed(bytes);
        lastWords += bytes;
    }
    lastWords.erase(0, lastWords.size() - std::min(lastWords.size(), LAST_WORDS));
    output += process.ReadOutput();
}

void Run::Follow(const Record& record) {
    const Clock::time_point now = Clock::now();
    if (!late && job.watch.Take(record, now)) {
        deadline = now + options.itemTime;
        startSeconds = startSeconds == 0 ? ToFPSeconds(now - started) : startSeconds;
    }
}

void Run::Finish(const Platform::ProcessReport& report) {
    if (report.startError != 0) {
        throw CheckFailure("Can't start " + ToStart(options, {}, job).program + ": " +
                           std::strerror(report.startError));
    }
    reader.Finish();
    survivors = report.survivors;
    end = ToEnd(report);
    seconds = ToFPSeconds(report.time - started);
    if (!stopped) {
        job.watch.End(late || !report.ended ? FromEnd(end) : ClosedError(), report.time);
    }
}

RunEnd Run::ToEnd(const Platform::ProcessReport& report) const {
    if (late && report.ended) {
        return {.deadline = ToFPSeconds(options.itemTime)};
    }
    if (WIFSIGNALED(report.status)) {
        return {.signal = Platform::SignalName(WTERMSIG(report.status))};
    }
    return {.status = WEXITSTATUS(report.status)};
}

}  // namespace Tarnex::Parent
