#include "assay/Summary.h"

#include <fmt/format.h>

#include "platform/TerminalText.h"

namespace Tarnex::Assay {
namespace {

using Platform::Colour;
using Platform::Terminal;

constexpr int OTHER_ROWS = 9;  // of the summary, besides the bad items

bool IsWorthTelling(const Parent::Item& item) {
    return IsBad(item.verdict) || !item.spoils.empty();
}

std::string Describe(const Parent::Item& item) {
    const auto part = [](const char* form, const auto& text) {
        return text.empty() ? "" : fmt::format(fmt::runtime(form), text);
    };
    return fmt::format("{}  {}{}{}{}{}{}", ToString(item.verdict), item.name,
                       part(": {}", item.reason), part(" ({})", item.phase),
                       part("; in company of {}", fmt::to_string(fmt::join(item.company, ", "))),
                       part("; spoils {}", fmt::to_string(fmt::join(item.spoils, ", "))),
                       item.carried ? "; known from before" : "");
}

Colour GetColour(const Parent::Item& item) {
    return item.verdict == Parent::Verdict::Unsteady ? Colour::Yellow
           : IsBad(item.verdict)                     ? Colour::Red
                                                     : Colour::None;
}

std::string DescribeCounts(const Json& counts) {
    std::string text;
    for (const auto& [verdict, count] : counts.items()) {
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count.get<int>(), verdict);
    }
    return text;
}

void PrintBadItems(Terminal& terminal, const Report& report) {
    const winsize size = terminal.GetSize();
    int rows = size.ws_row - OTHER_ROWS;
    int hidden = 0;
    for (const Parent::Item& item : report.items) {
        if (!IsWorthTelling(item)) {
            continue;
        }
        const std::string command = "    " + Platform::QuoteForShell(item.repro);
        rows -= 2 + static_cast<int>(command.size()) / size.ws_col;
        if (rows < 0) {
            ++hidden;
        } else {
            PrintItem(terminal, item, terminal.interactive ? size.ws_col : LONGEST_LINE);
            terminal.Line(command);
        }
    }
    if (hidden > 0) {
        terminal.Line(fmt::format("... and {} more in the report", hidden));
    }
}

}  // namespace

void PrintItem(Terminal& terminal, const Parent::Item& item, std::size_t columns) {
    if (IsWorthTelling(item)) {
        terminal.Line(Platform::MakePrintable(Describe(item), columns), GetColour(item));
    }
}

void PrintSummary(Terminal& terminal, const Report& report) {
    const Json totals = CountVerdicts(report.items);
    for (const auto& [kind, counts] : totals.items()) {
        if (!counts.empty()) {
            terminal.Line(fmt::format("{}s: {}", kind, DescribeCounts(counts)));
        }
    }
    PrintBadItems(terminal, report);
    for (const std::string& note : report.notes) {
        terminal.Line("note: " + note);
    }
    if (!report.complete) {
        terminal.Line("not complete: " + report.problem, Colour::Red);
    }
    terminal.Line(fmt::format("{} runs in {:.2f} s", report.runs.size(), report.seconds));
}

}  // namespace Tarnex::Assay
