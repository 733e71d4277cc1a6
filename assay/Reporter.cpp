#include "assay/Reporter.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <iterator>
#include <utility>

#include "assay/Summary.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {

Reporter::Reporter(const Arguments& arguments, Platform::Terminal& terminal,
                   FinishRepro finishRepro, KeepOpen keepOpen)
    : arguments(arguments),
      terminal(terminal),
      finishRepro(std::move(finishRepro)),
      keepOpen(std::move(keepOpen)) {
    if (!arguments.accept.empty()) {
        accepted = Reports::AcceptedItems(arguments.accept);
    }
    if (!arguments.log.empty()) {
        log.open(arguments.log, std::ios::binary);
        if (!log) {
            throw Exception("can't write " + arguments.log + ": " + std::strerror(errno));
        }
    }
}

void Reporter::Accept(Report& report) {
    accepted.Mark(report.items);
    std::ranges::copy(accepted.DescribeUnused(), std::back_inserter(report.notes));
}

void Reporter::OnVerdict(const Parent::Item& item) {
    Parent::Item finished = item;
    accepted.Mark(finished);
    PrintItem(terminal, finished);
    if (IsBad(item.verdict) && !finished.accepted) {
        ++bad[std::string(ToString(item.verdict))];
    }
    finishRepro(finished);
    WriteEvent(Reports::ToJson(finished));
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
                {"totals", Reports::CountVerdicts(report.items)},
                {"status", status}});
    if (!std::cout) {
        throw Exception("can't write all events to standard output");
    }
    if (!arguments.log.empty() && !log.flush()) {
        throw Exception("can't write all of " + arguments.log);
    }
}

void Reporter::WriteEvent(const Json& event) const {
    if (arguments.events) {
        std::cout << Reports::Render(event) << std::endl;
    }
}

}  // namespace Tarnex::Assay
