#include "assay/Reporter.h"

#include <fmt/format.h>

#include <iostream>
#include <utility>

#include "core/support/Exception.h"

namespace Tarnex::Assay {

Reporter::Reporter(Terminal& terminal, const SavedReport& saved, bool events,
                   const std::string& log)
    : terminal(terminal), saved(saved), events(events), logPath(log) {
    if (!log.empty()) {
        this->log.open(log, std::ios::binary);
        if (!this->log) {
            throw Exception("can't write " + log);
        }
    }
}

void Reporter::OnVerdict(const Parent::Item& item) {
    terminal.Item(item);
    if (IsBad(item.verdict)) {
        ++bad[std::string(ToString(item.verdict))];
    }
    Parent::Item finished = item;
    saved.Finish(finished.repro);
    WriteEvent(ToJson(finished));
}

void Reporter::OnProgress(const Parent::Progress& progress) {
    std::string text = fmt::format("{} {}/{}", progress.phase, progress.done, progress.total);
    for (const auto& [verdict, count] : bad) {
        text += fmt::format("  {} {}", count, verdict);
    }
    if (!progress.touched.empty()) {
        const double seconds = std::chrono::duration<double>(progress.open).count();
        text += fmt::format("  {} {:.1f} s", progress.touched, seconds);
    }
    terminal.Status(text);
}

void Reporter::OnOutput(std::size_t run, std::string_view bytes) {
    if (std::exchange(loggedRun, run) != run) {
        log << "\n== run " << run << "\n";
    }
    log << bytes << std::flush;
}

void Reporter::Close(const Report& report, int status) {
    WriteEvent({{"complete", report.complete},
                {"totals", CountVerdicts(report.items)},
                {"status", status}});
    if (!std::cout) {
        throw Exception("can't write all events to standard output");
    }
    if (!logPath.empty() && !log.flush()) {
        throw Exception("can't write all of " + logPath);
    }
}

void Reporter::WriteEvent(const Json& event) const {
    if (events) {
        std::cout << Render(event) << std::endl;
    }
}

}  // namespace Tarnex::Assay
