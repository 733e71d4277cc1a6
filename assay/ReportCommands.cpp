#include <cstdio>

#include "assay/CommandLine.h"
#include "assay/Compare.h"
#include "assay/ExitStatus.h"
#include "assay/FileOutput.h"
#include "assay/Renderers.h"
#include "assay/Summary.h"
#include "assay/Text.h"

namespace Tarnex::Assay {
namespace {

std::vector<NamedReport> ReadAll(const std::vector<std::string>& paths) {
    std::vector<NamedReport> reports;
    for (const std::string& path : paths) {
        reports.emplace_back(path, ReadReport(path));
    }
    return reports;
}

/// The value of a fact of the machine, for people.
std::string Get(const Report& report, const char* fact) {
    const Json& value = report.machine.contains(fact) ? report.machine.at(fact) : Json();
    return MakePrintable(value.is_string() ? value.get<std::string>() : Render(value));
}

void PrintHead(Terminal& terminal, const std::string& name, const Report& report) {
    terminal.Line(MakePrintable(name + ": " + report.started + ", " + Get(report, "system") +
                                ", kernel " + Get(report, "kernel") + ", " + report.installation));
}

void PrintChanges(Terminal& terminal, const char* title, const std::vector<Change>& changes,
                  Colour colour) {
    if (changes.empty()) {
        return;
    }
    terminal.Line(std::string(title) + ":", colour);
    for (const Change& change : changes) {
        const Parent::Item& item = change.after == nullptr ? *change.before : *change.after;
        terminal.Line(MakePrintable("  " + item.name + ": " + Describe(change)));
    }
}

void PrintDifferences(Terminal& terminal, const Differences& differences) {
    PrintChanges(terminal, "worse", differences.worse, Colour::Red);
    PrintChanges(terminal, "better", differences.better, Colour::Green);
    PrintChanges(terminal, "appeared", differences.appeared, Colour::None);
    PrintChanges(terminal, "went", differences.went, Colour::None);
    PrintChanges(terminal, "otherwise changed", differences.others, Colour::None);
    terminal.Line(std::to_string(differences.worse.size()) + " worse, " +
                  std::to_string(differences.better.size()) + " better, " +
                  std::to_string(differences.appeared.size()) + " appeared, " +
                  std::to_string(differences.went.size()) + " went");
}

/// What isn't in the items and may have caused their change.
void PrintEnvironment(Terminal& terminal, const Report& before, const Report& after) {
    for (const auto& [key, value] : after.environment.items()) {
        const auto old = before.environment.find(key);
        const bool isSame = old != before.environment.end() && *old == value;
        if (!isSame && !value.is_array()) {
            terminal.Line(MakePrintable(
                key + " changed: " + (old == before.environment.end() ? "" : Render(*old)) +
                " -> " + Render(value)));
        } else if (!isSame) {
            terminal.Line(MakePrintable(key + " changed"));
        }
    }
}

}  // namespace

int RunReportCommand(const ReportArguments& arguments) {
    const auto reports = ReadAll(arguments.reports);
    if (!arguments.html.empty()) {
        WriteFile(arguments.html, RenderHtml(reports));
    }
    if (!arguments.junit.empty()) {
        WriteFile(arguments.junit, RenderJunit(reports));
    }
    if (arguments.html.empty() && arguments.junit.empty()) {
        Terminal terminal(stdout, false);
        for (const auto& [name, report] : reports) {
            PrintHead(terminal, name, report);
            PrintSummary(terminal, report);
        }
    }
    return STATUS_GOOD;
}

int RunCompareCommand(const ReportArguments& arguments) {
    const auto reports = ReadAll(arguments.reports);
    const Report& before = reports.at(0).second;
    const Report& after = reports.at(1).second;
    Terminal terminal(stdout, false);
    for (const auto& [name, report] : reports) {
        PrintHead(terminal, name, report);
        if (!report.complete) {
            terminal.Line("  not complete: " + MakePrintable(report.problem), Colour::Yellow);
        }
    }
    PrintEnvironment(terminal, before, after);
    const Differences differences = Compare(before, after);
    PrintDifferences(terminal, differences);
    return differences.worse.empty() ? STATUS_GOOD : STATUS_BAD;
}

}  // namespace Tarnex::Assay
