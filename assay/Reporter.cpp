#include "assay/Reporter.h"

#include <fmt/format.h>

#include <iostream>
#include <utility>

#include "assay/Environment.h"
#include "assay/Known.h"
#include "assay/Summary.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {

Reporter::Reporter(const Arguments& arguments, Platform::Terminal& terminal,
                   const SavedReport& saved)
    : environment(DescribeEnvironment()), arguments(arguments), terminal(terminal), saved(saved) {
    if (!arguments.log.empty()) {
        log.open(arguments.log, std::ios::binary);
        if (!log) {
            throw Exception("can't write " + arguments.log);
        }
    }
    if (!arguments.known.empty()) {
        known = ReadReport(arguments.known);
    }
}

void Reporter::SpareKnown(std::vector<Parent::Item>& items) const {
    if (known) {
        CarryOver(*known, environment, saved.freshLists, items);
    }
}

void Reporter::OnVerdict(const Parent::Item& item) {
    PrintItem(terminal, item);
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

void Reporter::OnListing(const Parent::Listing& listing, std::vector<Parent::Item>& codecs) {
    environment["codec_files"] = DescribeFiles(listing.files);
    SpareKnown(codecs);
}

void Reporter::Close(const Report& report, int status) {
    WriteEvent({{"complete", report.complete},
                {"totals", CountVerdicts(report.items)},
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
        std::cout << Render(event) << std::endl;
    }
}

}  // namespace Tarnex::Assay
