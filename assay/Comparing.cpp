#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <boost/filesystem.hpp>

#include "assay/Commands.h"
#include "assay/Show.h"
#include "assay/Summary.h"
#include "assay/UserState.h"
#include "core/support/Exception.h"
#include "report/Compare.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Platform::Colour;
using Platform::Terminal;
using Reports::Trend;

struct Title {
    Trend trend;
    const char* text;
    Colour colour;
};
constexpr std::array TITLES{Title{Trend::Worse, "worse", Colour::Red},
                            Title{Trend::Better, "better", Colour::Green},
                            Title{Trend::Appeared, "appeared", Colour::None},
                            Title{Trend::Gone, "gone", Colour::None},
                            Title{Trend::Other, "otherwise changed", Colour::None},
                            Title{Trend::Accepted, "worse but accepted", Colour::None}};

/// The newest report, after the newest one before it that is about the same.
std::vector<NamedReport> FindLastTwo() {
    boost::system::error_code error;
    const fs::path newest = fs::canonical(GetStateRoot() / "report.json", error);
    if (error) {
        throw Exception("no check has been made yet; assay all makes one");
    }
    const fs::path folder = newest.parent_path().parent_path();
    const Reports::State state(folder.parent_path(), folder.filename().string());
    const NamedReport after(newest.string(), Reports::ReadReport(newest));
    auto paths = state.ListReports();
    for (auto path = paths.rbegin(); path != paths.rend(); ++path) {
        if (*path < newest) {
            NamedReport before(path->string(), Reports::ReadReport(*path));
            if (HaveSameScope(before.second, after.second)) {
                return {std::move(before), after};
            }
        }
    }
    throw Exception("there is no earlier report of the same items as " + newest.string());
}

void PrintMachines(Terminal& terminal, const Report& before, const Report& after) {
    const auto lines = CompareMachines(before, after);
    terminal.Line(lines.empty() ? "the machine: nothing changed" : "the machine:");
    for (const std::string& line : lines) {
        terminal.Line("  " + line);
    }
}

void PrintChanges(Terminal& terminal, const std::vector<Reports::Change>& changes) {
    std::string counts;
    for (const auto& [trend, title, colour] : TITLES) {
        const auto count = std::ranges::count(changes, trend, &Reports::Change::trend);
        counts += fmt::format("{}{} {}", counts.empty() ? "" : ", ", count, title);
        if (count > 0) {
            terminal.Line(fmt::format("{}:", title), colour);
        }
        for (const Reports::Change& change : changes) {
            if (change.trend == trend) {
                terminal.Line("  " + change.text);
            }
        }
    }
    terminal.Line(counts);
}

}  // namespace

int CompareReports(const Arguments& arguments) {
    auto reports = arguments.reports.empty() ? FindLastTwo() : ReadReports(arguments.reports);
    if (auto accepted = ReadAccepted(arguments.accept)) {
        std::ranges::for_each(reports, [&](auto& named) { accepted->Mark(named.second.items); });
        WarnOfUnused(*accepted);
    }
    const Report& before = reports.at(0).second;
    const Report& after = reports.at(1).second;
    Terminal terminal(stdout, false);
    std::ranges::for_each(reports, [&](const auto& report) { PrintHead(terminal, report); });
    const auto changes = Reports::Compare(before, after);
    PrintMachines(terminal, before, after);
    PrintChanges(terminal, changes);
    if (!after.complete) {
        terminal.Line("the later check isn't complete: " + after.problem, Colour::Red);
        return STATUS_INCOMPLETE;
    }
    const bool isWorse = std::ranges::count(changes, Trend::Worse, &Reports::Change::trend) > 0;
    return isWorse ? STATUS_BAD : STATUS_GOOD;
}

}  // namespace Tarnex::Assay
