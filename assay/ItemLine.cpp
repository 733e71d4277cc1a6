#include "assay/ItemLine.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <sstream>

#include "platform/TerminalText.h"
#include "report/Wording.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;
using Platform::Colour;
using Platform::CountColumns;

constexpr std::size_t LONGEST_LINE = 1000;  // bytes
constexpr std::string_view GAP = "  ";

std::string Pad(const std::string& text, std::size_t columns) {
    const std::size_t used = CountColumns(text);
    return text + std::string(columns > used ? columns - used : 0, ' ');
}

std::string DescribeRest(const Item& item) {
    std::vector<std::string> parts;
    const auto add = [&](const char* form, const auto& text) {
        if (!text.empty()) {
            parts.push_back(fmt::format(fmt::runtime(form), text));
        }
    };
    add("{}", Reports::DescribeReason(item));
    add("while: {}", item.phase);
    add("fails only after {}", fmt::to_string(fmt::join(item.company, ", ")));
    add("breaks {}", fmt::to_string(fmt::join(item.spoils, ", ")));
    add("{}", std::string(item.carried ? "known from before" : ""));
    const std::string text = fmt::to_string(fmt::join(parts, "; "));
    return item.package.empty() ? text : fmt::format("{} ({})", text, item.package);
}

}  // namespace

Columns ChooseColumns(const Platform::Terminal& terminal, const std::vector<const Item*>& items) {
    Columns columns;
    const std::size_t width = terminal.GetSize().ws_col;
    columns.all = terminal.interactive ? width : 0;
    const std::size_t widest = std::clamp<std::size_t>(width / 3, 12, 40);
    columns.name = items.empty() ? std::min<std::size_t>(widest, 24) : 0;
    for (const Item* item : items) {
        const std::string name = Platform::MakePrintable(Reports::NameItem(*item));
        columns.name = std::max(columns.name, std::min(widest, CountColumns(name)));
        columns.verdict = std::max(columns.verdict, ToString(item->verdict).size());
    }
    return columns;
}

std::vector<std::string> DescribeItem(const Item& item, const Columns& columns) {
    const std::string name = Platform::MakePrintable(Reports::NameItem(item));
    const std::string rest = Platform::MakePrintable(DescribeRest(item), LONGEST_LINE);
    const std::string verdict = Pad(std::string(ToString(item.verdict)), columns.verdict);
    const std::string start = fmt::format("{}{}{}", verdict, GAP, name);
    const std::size_t indent = columns.verdict + columns.name + 2 * GAP.size();
    if (rest.empty()) {
        return {start};
    }
    const std::string head = fmt::format("{}{}", Pad(start, indent - GAP.size()), GAP);
    if (columns.all == 0 || CountColumns(head) <= indent) {
        return Wrap(head, rest, columns.all == 0 ? std::string::npos : columns.all, indent);
    }
    // A name that is too long for its column pushes the rest to the next line.
    std::vector<std::string> lines = Wrap(std::string(indent, ' '), rest, columns.all, indent);
    lines.insert(lines.begin(), start);
    return lines;
}

std::vector<std::string> Wrap(const std::string& head, const std::string& text, std::size_t width,
                              std::size_t indent) {
    constexpr std::size_t LEAST = 10;  // columns, on terminals that are too narrow
    width = std::max(width, indent + LEAST);
    std::vector<std::string> lines{head};
    std::istringstream words(text);
    bool isEmpty = true;
    for (std::string word; words >> word; isEmpty = false) {
        if (!isEmpty && CountColumns(lines.back()) + 1 + CountColumns(word) > width) {
            lines.emplace_back(indent, ' ');
            isEmpty = true;
        }
        lines.back() += (isEmpty ? "" : " ") + word;
    }
    return lines;
}

void PrintItem(Platform::Terminal& terminal, const Item& item, const Columns& columns,
               bool passing) {
    Colour colour = GetColour(item.verdict);
    for (const std::string& line : DescribeItem(item, columns)) {
        const std::size_t length = ToString(item.verdict).size();
        if (passing) {
            terminal.PassingLine(line, colour, length);
        } else {
            terminal.Line(line, colour, length);
        }
        colour = Colour::None;
    }
}

void PrintWrapped(Platform::Terminal& terminal, const std::string& head, const std::string& text,
                  std::size_t indent) {
    const std::size_t width = terminal.interactive ? terminal.GetSize().ws_col : std::string::npos;
    for (const std::string& line : Wrap(head, Platform::MakePrintable(text), width, indent)) {
        terminal.Line(line);
    }
}

Colour GetColour(Verdict verdict) {
    return verdict == Verdict::Unsteady || verdict == Verdict::NotReached ? Colour::Yellow
           : IsBad(verdict)                                               ? Colour::Red
           : verdict == Verdict::Good                                     ? Colour::Green
                                                                          : Colour::None;
}

}  // namespace Tarnex::Assay
