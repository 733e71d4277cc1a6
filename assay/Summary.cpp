#include "assay/Summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>

#include "assay/Commands.h"
#include "assay/ItemLine.h"
#include "installation/Installation.h"
#include "report/ItemKeys.h"
#include "report/Wording.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;
using Platform::Colour;
using Platform::Terminal;

constexpr int OTHER_ROWS = 4;  // what follows the summary, and the line where one types

bool IsWorthTelling(const Item& item) {
    return (IsBad(item.verdict) && !item.accepted) || !item.spoils.empty();
}

/// The worst last, then what is accepted.
std::string DescribeCounts(const Report& report, Parent::ItemKind kind) {
    std::map<int, std::pair<std::string_view, int>> counts;
    for (const Item& item : report.items) {
        if (item.kind == kind) {
            auto& [name, count] = counts[item.accepted ? 1 : -Reports::GetRank(item.verdict)];
            name = item.accepted ? "accepted" : ToString(item.verdict);
            ++count;
        }
    }
    std::string text;
    for (const auto& [rank, counted] : counts) {
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", counted.second, counted.first);
    }
    return text;
}

/// A column for each kind, so that the counts stand in line.
void PrintCounts(Terminal& terminal, const Report& report) {
    for (std::size_t kind = 0; kind < std::size(Reports::KIND_NAMES); ++kind) {
        const std::string text = DescribeCounts(report, static_cast<Parent::ItemKind>(kind));
        if (!text.empty()) {
            terminal.Line(
                fmt::format("{:<10} {}", fmt::format("{}s", Reports::KIND_NAMES[kind]), text));
        }
    }
}

/// What people would otherwise have to ask.
void PrintMaterial(Terminal& terminal, const Report& report) {
    if (std::ranges::count(report.items, Verdict::NoMaterial, &Item::verdict) > 0) {
        const auto samples = Installations::Installation(report.installation).GetSamples();
        PrintWrapped(terminal, "no-material: ",
                     fmt::format("not tested, because no sample file holds the codec; put one with "
                                 "its id in the name into {}",
                                 samples.string()));
    }
}

/// As far as `rows` go, each whole. Says how many there are besides.
void PrintItems(Terminal& terminal, const std::vector<const Item*>& items, int rows) {
    const Columns columns = ChooseColumns(terminal, items);
    std::size_t shown = 0;
    for (const Item* item : items) {
        rows -= static_cast<int>(DescribeItem(*item, columns).size());
        if (terminal.interactive && rows < 1 && shown > 0) {
            terminal.Line(fmt::format("... and {} more", items.size() - shown));
            return;
        }
        PrintItem(terminal, *item, columns);
        ++shown;
    }
}

}  // namespace

void PrintItem(Terminal& terminal, const Item& item) {
    if (IsWorthTelling(item)) {
        PrintItem(terminal, item, ChooseColumns(terminal), true);
    }
}

std::vector<const Item*> GetBadItems(const Report& report) {
    std::vector<const Item*> bad;
    for (const Item& item : report.items) {
        if (IsWorthTelling(item)) {
            bad.push_back(&item);
        }
    }
    std::ranges::stable_sort(bad, {}, [](const Item* item) {
        return item->spoils.empty() ? Reports::GetRank(item->verdict) : -1;
    });
    return bad;
}

void PrintSummary(Terminal& terminal, const Report& report) {
    const bool canList = terminal.RemovePassing();
    const auto bad = GetBadItems(report);
    PrintCounts(terminal, report);
    PrintMaterial(terminal, report);
    if (canList) {
        const auto others = static_cast<int>(report.notes.size()) + (report.complete ? 0 : 1) + 5;
        PrintItems(terminal, bad, terminal.GetSize().ws_row - OTHER_ROWS - others);
    }
    if (!report.badEnd.empty()) {
        terminal.Line("bad end: " + report.badEnd, Colour::Red);
    }
    for (const std::string& note : report.notes) {
        PrintWrapped(terminal, "note: ", note, 6);
    }
    if (!report.complete) {
        terminal.Line("not complete: " + report.problem, Colour::Yellow, 12);
    }
    terminal.Line(fmt::format("{} runs in {:.2f} s{}", report.runs.size(), report.seconds,
                              bad.empty() ? "" : "; assay show NAME tells more"));
}

int GetStatus(const Report& report) {
    if (!report.complete) {
        return STATUS_INCOMPLETE;
    }
    const auto isBad = [](const Item& item) { return IsBad(item.verdict) && !item.accepted; };
    return !report.badEnd.empty() || std::ranges::any_of(report.items, isBad) ? STATUS_BAD
                                                                              : STATUS_GOOD;
}

}  // namespace Tarnex::Assay
