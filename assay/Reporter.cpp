#include "assay/Reporter.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <utility>

#include "assay/Summary.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;

std::string DescribeTouched(const Parent::Progress& progress) {
    if (progress.touched.empty()) {
        return "";
    }
    std::array<char, 32> seconds{};
    std::snprintf(seconds.data(), seconds.size(), " %.1f s",
                  static_cast<double>(progress.open.count()) / 1000);
    return "  " + std::string(progress.touched) + seconds.data();
}

}  // namespace

Reporter::Reporter(Terminal& terminal, bool events, const std::string& log, TakeListing takeListing,
                   Finish finish)
    : terminal(terminal),
      events(events),
      logPath(log),
      takeListing(std::move(takeListing)),
      finish(std::move(finish)) {
    if (!log.empty()) {
        this->log.open(log, std::ios::binary | std::ios::trunc);
        if (!this->log) {
            throw Exception("can't write " + log + ": " + std::strerror(errno));
        }
    }
}

void Reporter::OnVerdict(const Item& item) {
    if (IsBad(item.verdict)) {
        ++bad[item.verdict];
        terminal.Line(DescribeItem(item), GetColour(item.verdict));
    }
    if (events) {
        WriteEvent(ToJson(finish(item)));
    }
}

void Reporter::OnProgress(const Parent::Progress& progress) {
    std::string text(progress.phase);
    text += " " + std::to_string(progress.done) + "/" + std::to_string(progress.total);
    for (const auto& [verdict, count] : bad) {
        text += "  " + std::to_string(count) + " " + std::string(ToString(verdict));
    }
    terminal.Status(text + DescribeTouched(progress));
}

void Reporter::OnOutput(std::size_t run, std::string_view bytes) {
    if (!log.is_open()) {
        return;
    }
    if (std::exchange(loggedRun, run) != run) {
        log << "\n== run " << run << "\n";
    }
    log.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void Reporter::OnListing(const Parent::Listing& listing, std::vector<Item>& codecs) {
    takeListing(listing, codecs);
}

void Reporter::OnEnd(const Report& report, int status) {
    if (events) {
        WriteEvent({{"complete", report.complete},
                    {"totals", TotalsToJson(report.items)},
                    {"status", status}});
    }
}

void Reporter::Close() {
    if (log.is_open()) {
        log.close();
    }
    if (!log) {
        throw Exception("can't write all of " + logPath);
    }
    if (events && !std::cout) {
        throw Exception("can't write all events to standard output");
    }
}

void Reporter::WriteEvent(const Json& event) {
    std::cout << Render(event) << std::endl;
}

}  // namespace Tarnex::Assay
