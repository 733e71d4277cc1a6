#include "assay/Summary.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "assay/Text.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::ItemKind;
using Parent::Verdict;

constexpr std::size_t REASON_LENGTH = 200;
constexpr std::size_t OTHER_ROWS = 10;   // of the summary, besides the bad items
constexpr std::size_t ROWS_OF_ITEM = 3;  // name and command, which wraps
constexpr std::size_t FEWEST_ITEMS = 3;

std::vector<Item> Select(const std::vector<Item>& items, auto condition) {
    std::vector<Item> selected;
    std::ranges::copy_if(items, std::back_inserter(selected), condition);
    return selected;
}

bool IsWorthTelling(const Item& item) {
    return IsBad(item.verdict) || !item.spoils.empty();
}

void PrintKind(Terminal& terminal, const Report& report, ItemKind kind, const char* name) {
    const auto items = Select(report.items, [&](const Item& item) { return item.kind == kind; });
    if (!items.empty()) {
        terminal.Line(std::to_string(items.size()) + " " + name + ": " + DescribeCounts(items));
    }
}

void PrintItem(Terminal& terminal, const Item& item) {
    terminal.Line(DescribeItem(item), GetColour(item.verdict));
    if (!item.repro.empty()) {
        terminal.Line("    " + MakePrintable(QuoteForShell(item.repro)));
    }
}

void PrintBad(Terminal& terminal, const Report& report) {
    const auto bad = Select(report.items, IsWorthTelling);
    const std::size_t fitting = (std::max(terminal.Rows(), OTHER_ROWS) - OTHER_ROWS) / ROWS_OF_ITEM;
    const std::size_t shown = std::min(bad.size(), std::max(fitting, FEWEST_ITEMS));
    for (std::size_t i = 0; i < shown; ++i) {
        PrintItem(terminal, bad[i]);
    }
    if (shown < bad.size()) {
        terminal.Line("... and " + std::to_string(bad.size() - shown) + " more in the report");
    }
}

std::string DescribeTime(double seconds) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.2f s", seconds);
    return text.data();
}

}  // namespace

std::string DescribeItem(const Item& item) {
    std::string text(ToString(item.verdict));
    text += "  " + item.name;
    text += item.reason.empty() ? "" : ": " + item.reason;
    text += item.phase.empty() ? "" : " (" + item.phase + ")";
    text += item.company.empty() ? "" : "; in company of " + Join(item.company, ", ");
    text += item.spoils.empty() ? "" : "; spoils " + Join(item.spoils, ", ");
    text += item.carried ? "; known from before" : "";
    return Shorten(text, item.name.size() + REASON_LENGTH);
}

std::string DescribeCounts(const std::vector<Item>& items) {
    std::vector<std::string> counts;
    for (const auto& [verdict, count] : CountVerdicts(items)) {
        counts.push_back(std::to_string(count) + " " + std::string(ToString(verdict)));
    }
    return Join(counts, ", ");
}

Colour GetColour(Verdict verdict) {
    return verdict == Verdict::Unsteady ? Colour::Yellow
           : IsBad(verdict)             ? Colour::Red
                                        : Colour::None;
}

void PrintSummary(Terminal& terminal, const Report& report) {
    PrintBad(terminal, report);
    for (const std::string& note : report.notes) {
        terminal.Line("note: " + Shorten(note, REASON_LENGTH));
    }
    PrintKind(terminal, report, ItemKind::Plugin, "plugins");
    PrintKind(terminal, report, ItemKind::Codec, "codecs");
    if (!report.complete) {
        terminal.Line("not complete: " + Shorten(report.problem, REASON_LENGTH), Colour::Red);
    }
    terminal.Line(std::to_string(report.runs.size()) + " runs in " + DescribeTime(report.seconds));
}

}  // namespace Tarnex::Assay
