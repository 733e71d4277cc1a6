#include "assay/Terminal.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "assay/Text.h"

namespace Tarnex::Assay {
namespace {

constexpr int OTHER_ROWS = 9;  // of the summary, besides the bad items

std::string_view GetVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

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

}  // namespace

Terminal::Terminal(std::FILE* stream, bool quiet)
    : stream(stream),
      quiet(quiet),
      interactive(isatty(fileno(stream)) != 0 && GetVariable("TERM") != "dumb"),
      coloured(interactive && GetVariable("NO_COLOR").empty()) {}

void Terminal::Line(std::string_view text, Colour colour) {
    if (quiet) {
        return;
    }
    ClearStatus();
    const bool inColour = coloured && colour != Colour::None;
    fmt::print(stream, "{}{}{}\n",
               inColour ? fmt::format("\x1b[{}m", static_cast<int>(colour)) : "",
               MakePrintable(text), inColour ? "\x1b[0m" : "");
    std::fflush(stream);
}

void Terminal::Status(std::string_view text) {
    if (quiet || !interactive) {
        return;
    }
    // The last column stays free: some terminals go to the next line once it is taken.
    fmt::print(stream, "\r\x1b[K{}", MakePrintable(text, GetSize().ws_col - 1U));
    std::fflush(stream);
    hasStatus = true;
}

void Terminal::Item(const Parent::Item& item, std::size_t columns) {
    if (IsWorthTelling(item)) {
        Line(MakePrintable(Describe(item), columns), GetColour(item));
    }
}

void Terminal::Summary(const Report& report) {
    const Json totals = CountVerdicts(report.items);
    for (const auto& [kind, counts] : totals.items()) {
        if (!counts.empty()) {
            Line(fmt::format("{}s: {}", kind, DescribeCounts(counts)));
        }
    }
    BadItems(report);
    for (const std::string& note : report.notes) {
        Line("note: " + note);
    }
    if (!report.complete) {
        Line("not complete: " + report.problem, Colour::Red);
    }
    Line(fmt::format("{} runs in {:.2f} s", report.runs.size(), report.seconds));
}

void Terminal::ClearStatus() {
    if (std::exchange(hasStatus, false)) {
        fmt::print(stream, "\r\x1b[K");
        std::fflush(stream);
    }
}

void Terminal::BadItems(const Report& report) {
    const winsize size = GetSize();
    int rows = size.ws_row - OTHER_ROWS;
    int hidden = 0;
    for (const Parent::Item& item : report.items) {
        if (!IsWorthTelling(item)) {
            continue;
        }
        const std::string command = "    " + QuoteForShell(item.repro);
        rows -= 2 + static_cast<int>(command.size()) / size.ws_col;
        if (rows < 0) {
            ++hidden;
        } else {
            Item(item, interactive ? size.ws_col : LONGEST_LINE);
            Line(command);
        }
    }
    if (hidden > 0) {
        Line(fmt::format("... and {} more in the report", hidden));
    }
}

winsize Terminal::GetSize() const {
    winsize size{};
    if (ioctl(fileno(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        size.ws_col = 80;
        size.ws_row = 24;
    }
    return size;
}

}  // namespace Tarnex::Assay
