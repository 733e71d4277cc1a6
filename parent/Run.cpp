#include "parent/Run.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "core/support/Text.h"
#include "parent/Installation.h"

namespace Tarnex::Parent {
namespace {

using Core::Utils::ToFPSeconds;

constexpr std::size_t LAST_WORDS = 2000;  // bytes
/// In one go, so that a module that never stops writing doesn't keep us from the deadlines.
constexpr int MAX_READS = 64;

Platform::ProcessStart ToStart(const CheckOptions& options, const Names& environment,
                               const Job& job) {
    return {(options.application / (job.helper ? HELPER : PROGRAM)).native(), job.arguments,
            environment, job.helper};
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

}  // namespace

Run::Run(const CheckOptions& options, CheckListener& listener, std::size_t index,
         const Names& environment, Job wanted)
    : job(std::move(wanted)),
      index(index),
      deadline(Clock::now() + options.itemTime),
      options(options),
      listener(listener),
      reader([this](const Record& record) { Follow(record); }),
      process(ToStart(options, environment, job)),
      errorPipe(process.ErrorDescriptor()),
      outputPipe(process.OutputDescriptor()) {}

void Run::AddDescriptors(std::vector<pollfd>& descriptors) const {
    for (const int descriptor : {errorPipe, outputPipe, process.ReportDescriptor()}) {
        descriptors.push_back({descriptor, POLLIN, 0});
    }
}

bool Run::Advance() {
    const auto report = process.TakeReport();
    ReadSome(errorPipe, [this](std::string_view bytes) { ReadError(bytes); });
    ReadSome(outputPipe, [this](std::string_view bytes) { output += bytes; });
    if (report) {
        Finish(*report);
        return true;
    }
    if (errorPipe < 0 && !job.watch.open.empty()) {  // Nothing can be learned any more.
        process.End();
    }
    if (Clock::now() >= deadline) {
        late = true;
        deadline = Clock::time_point::max();
        process.End();
    }
    return false;
}

void Run::Stop() {
    stopped = true;
    process.End();
    pollfd event{process.ReportDescriptor(), POLLIN, 0};
    while (poll(&event, 1, -1) < 0) {
    }
    Advance();
}

void Run::ReadError(std::string_view bytes) {
    listener.OnOutput(index, bytes);
    lastWords += bytes;
    lastWords.erase(0, lastWords.size() - std::min(lastWords.size(), LAST_WORDS));
    reader.Feed(bytes);
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
        return OverDeadline{ToFPSeconds(options.itemTime)};
    }
    if (WIFSIGNALED(report.status)) {
        return KilledBy{Platform::SignalName(WTERMSIG(report.status))};
    }
    return ExitStatus{WEXITSTATUS(report.status)};
}

}  // namespace Tarnex::Parent
