#include "assay/Show.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <boost/filesystem.hpp>
#include <sstream>

#include "assay/Commands.h"
#include "assay/ItemLine.h"
#include "assay/Names.h"
#include "assay/Summary.h"
#include "assay/Trace.h"
#include "core/support/Exception.h"
#include "platform/TerminalText.h"
#include "report/Wording.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::ItemKind;
using Platform::Terminal;

constexpr std::size_t LABEL = 12;  // columns

NamedReport ReadNewest(const Arguments& arguments) {
    const std::string path =
        arguments.report.empty() ? GetNewestReport().string() : arguments.report;
    if (arguments.report.empty() && !boost::filesystem::exists(path)) {
        throw Exception("there is no report yet (" + path + "); \"assay all\" makes one");
    }
    return {path, ReadReport(path)};
}

/// The words together may be one name, else each is.
std::vector<const Item*> FindItems(const Report& report, const std::vector<std::string>& words) {
    const auto all = GetItems(report.items);
    auto names = FindNames(fmt::to_string(fmt::join(words, " ")), all);
    if (names.empty()) {
        names = FindNames(words, all, "item");
    }
    std::vector<const Item*> items;
    for (const Item& item : report.items) {
        if (std::ranges::find(names, item.name) != names.end()) {
            items.push_back(&item);
        }
    }
    return items;
}

void PrintLines(Terminal& terminal, const std::vector<const Item*>& items) {
    const Columns columns = ChooseColumns(terminal, items);
    for (const Item* item : items) {
        PrintItem(terminal, *item, columns);
    }
}

std::string DescribeKind(const Item& item) {
    if (item.kind == ItemKind::Codec) {
        return item.name;
    }
    const std::string interface = item.interface.empty()    ? ""
                                  : item.interface == "own" ? "Assayer's own"
                                                            : item.interface;
    if (item.kind == ItemKind::Plugin) {
        return fmt::format("module, {}{}{}", interface, interface.empty() ? "" : ", ",
                           item.factory);
    }
    return fmt::format("{}{}plugin of {}, depth {}",
                       item.title.empty() ? "" : '"' + item.title + "\", ",
                       interface.empty() ? "" : interface + " ", item.plugin, item.depth);
}

std::string DescribeFile(const Item& item) {
    if (!item.file) {
        return "";
    }
    const auto& [path, size, modified, buildId] = *item.file;
    return fmt::format("{}{}{}{}", path, size > 0 ? fmt::format(", {} bytes", size) : "",
                       modified.empty() ? "" : ", changed " + modified.substr(0, 10),
                       buildId.empty() ? "" : ", build id " + buildId);
}

/// 12.5 µs, 12.5 ms, 1.25 s: three digits that say something.
std::string DescribeTime(double seconds) {
    return seconds < 1e-3 ? fmt::format("{:.3g} µs", seconds * 1e6)
           : seconds < 1  ? fmt::format("{:.3g} ms", seconds * 1e3)
                          : fmt::format("{:.3g} s", seconds);
}

std::string DescribeCheck(const Item& item) {
    const std::string when = item.checked.empty() ? "" : item.checked.substr(0, 19) + "Z, ";
    const std::string took = item.seconds ? "took " + DescribeTime(*item.seconds) : "not touched";
    return when + took + (item.carried ? "; known from an earlier check" : "");
}

void PrintFact(Terminal& terminal, const std::string& label, const std::string& text) {
    if (!text.empty()) {
        PrintWrapped(terminal, fmt::format("{:<{}}", label, LABEL), text, LABEL);
    }
}

/// As it is, a line for each of its lines.
void PrintText(Terminal& terminal, const std::string& label, const std::string& text) {
    if (text.empty() || text == label) {
        return;
    }
    terminal.Line(label);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        terminal.Line("    " + line);
    }
}

void PrintExercises(Terminal& terminal, const Report& report, const Item& plugin) {
    std::vector<const Item*> exercises;
    for (const Item& item : report.items) {
        if (plugin.kind == ItemKind::Plugin && item.kind == ItemKind::Exercise &&
            item.plugin == plugin.name) {
            exercises.push_back(&item);
        }
    }
    if (!exercises.empty()) {
        terminal.Line("What is in it:");
        PrintLines(terminal, exercises);
    }
}

void PrintDetails(Terminal& terminal, const Report& report, const Item& item) {
    const std::string verdict(ToString(item.verdict));
    terminal.Line(fmt::format("{}  {}", verdict, Reports::NameItem(item)), GetColour(item.verdict),
                  verdict.size());
    const auto names = [](const auto& list) { return fmt::to_string(fmt::join(list, ", ")); };
    PrintFact(terminal, "Is", DescribeKind(item));
    PrintFact(terminal, "Means", std::string(Reports::ExplainVerdict(item.verdict)));
    PrintFact(terminal, "Reason", Reports::DescribeReason(item));
    PrintFact(terminal, "While", item.phase);
    PrintFact(terminal, "Fails only after", names(item.company));
    PrintFact(terminal, "Breaks", names(item.spoils));
    PrintFact(terminal, "Input from",
              item.input.empty() ? "" : item.input + ", which ended its run");
    PrintFact(terminal, "Package", item.package);
    PrintFact(terminal, "File", DescribeFile(item));
    PrintFact(terminal, "Checked", DescribeCheck(item));
    for (const std::string& remark : item.remarks) {
        PrintFact(terminal, "Remark", remark);
    }
    PrintText(terminal, EndsRuns(item.verdict) ? "Last words:" : "Whole text:",
              item.text == item.reason ? "" : item.text);
    PrintText(terminal, "Show it again:", Platform::QuoteForShell(item.repro));
    PrintExercises(terminal, report, item);
}

std::chrono::seconds GetItemTime(const Report& report) {
    constexpr unsigned int USUAL = 20;
    return std::chrono::seconds(
        report.options.is_object() ? report.options.value("item_time", USUAL) : USUAL);
}

void Trace(Terminal& terminal, const Report& report, const std::vector<const Item*>& items) {
    if (items.size() != 1) {
        throw Exception("--trace needs the name of one item; these are " +
                        fmt::to_string(items.size()));
    }
    PrintDetails(terminal, report, *items.front());
    PrintTrace(terminal, *items.front(), GetItemTime(report));
}

}  // namespace

int Show(const Arguments& arguments) {
    const NamedReport named = ReadNewest(arguments);
    const Report& report = named.second;
    Terminal terminal(stdout, false);
    if (arguments.names.empty() && !arguments.trace) {
        PrintHead(terminal, named);
        PrintSummary(terminal, report);
        return GetStatus(report);
    }
    const auto items = FindItems(report, arguments.names);
    if (arguments.trace) {
        Trace(terminal, report, items);
    } else if (items.size() == 1) {
        PrintDetails(terminal, report, *items.front());
    } else {
        PrintLines(terminal, items);
    }
    return GetStatus(report);
}

}  // namespace Tarnex::Assay
