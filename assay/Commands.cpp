#include "assay/Commands.h"

#include <fmt/format.h>
#include <boost/filesystem.hpp>

#include <algorithm>
#include <array>
#include <iostream>

#include "assay/Compare.h"
#include "assay/Renderers.h"
#include "assay/Summary.h"
#include "collect/Installation.h"
#include "collect/OwnInstallation.h"
#include "core/support/Exception.h"
#include "platform/Files.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;
using Platform::Colour;
using Platform::Terminal;

struct Title {
    Trend trend;
    const char* text;
    Colour colour;
};
constexpr std::array TITLES{
    Title{Trend::Worse, "worse", Colour::Red}, Title{Trend::Better, "better", Colour::Green},
    Title{Trend::Appeared, "appeared", Colour::None}, Title{Trend::Gone, "gone", Colour::None},
    Title{Trend::Other, "otherwise changed", Colour::None}};

/// Takes the list of codecs and decides all of them, so that none is tested.
class Lister : public Parent::CheckListener {
public:
    void OnVerdict(const Item&) override {}
    void OnProgress(const Parent::Progress&) override {}
    void OnOutput(std::size_t, std::string_view) override {}
    void OnListing(const Parent::Listing&, std::vector<Item>& codecs) override {
        for (Item& codec : codecs) {
            codec.verdict = Parent::Verdict::Good;
        }
        items = codecs;
    }

    std::vector<Item> items;
};

/// Each group once, with its items below it.
void PrintGroups(const std::vector<Item>& items) {
    std::string group;
    for (const Item& item : items) {
        const bool isPlugin = item.kind == Parent::ItemKind::Plugin;
        const std::string name = isPlugin ? item.factory : item.coder + "." + item.implementation;
        if (std::exchange(group, name) != name) {
            std::cout << name << "\n";
        }
        const bool isMissing = item.verdict == Parent::Verdict::Missing;
        std::cout << "  " << (isPlugin ? item.name : item.codec) << (isMissing ? " (no file)" : "")
                  << "\n";
    }
}

std::vector<Collect::SearchFolder> ChooseFolders(const std::vector<std::string>& named) {
    std::vector<Collect::SearchFolder> folders;
    for (const std::string& folder : named) {
        if (!fs::is_directory(folder)) {
            throw Exception("not a directory: " + folder);
        }
        folders.push_back({folder});
    }
    return folders.empty() ? Collect::GetUsualFolders() : folders;
}

std::vector<NamedReport> ReadAll(const std::vector<std::string>& paths) {
    std::vector<NamedReport> reports;
    reports.reserve(paths.size());
    for (const std::string& path : paths) {
        reports.emplace_back(path, ReadReport(path));
    }
    return reports;
}

void PrintHead(Terminal& terminal, const NamedReport& named) {
    const auto& [name, report] = named;
    terminal.Line(fmt::format(
        "{}: {}, {}, kernel {}{}", name, report.started, report.machine.value("system", ""),
        report.machine.value("kernel", ""), report.complete ? "" : ", not complete"));
}

}  // namespace

int List(const Arguments& arguments) {
    Parent::CheckOptions options = arguments.options;
    options.codecs = true;
    options.jobs = 1;
    options.application = Collect::ChooseInstallation(arguments.app).directory;
    const std::vector<Item> plugins = Parent::ListPlugins(options.application);
    PrintGroups(plugins);
    Lister lister;
    const auto result = Parent::RunCheck(options, plugins, lister);
    PrintGroups(lister.items);
    if (!result.complete) {
        throw Exception("the codecs can't be listed: " + result.problem);
    }
    return STATUS_GOOD;
}

int Collect(const Arguments& arguments) {
    const auto folders = ChooseFolders(arguments.folders);
    const fs::path directory =
        arguments.into.empty() ? Collect::GetOwnInstallation() : fs::absolute(arguments.into);
    const bool copied = Collect::MakeInstallation(directory);
    const auto findings = Collect::FindModules(folders, directory.string());
    const auto changes = Collect::UpdateInstallation(directory.string(), findings.modules);
    for (const Collect::LeftOut& leftOut : findings.leftOut) {
        std::cout << "left out " << leftOut.path.string() << ": " << leftOut.reason << "\n";
    }
    for (const std::string& text : changes.renamed) {
        std::cout << text << "\n";
    }
    const bool same =
        changes.linked.empty() && changes.removed.empty() && !changes.listWritten && !copied;
    std::cout << directory.string() << (copied ? ": program copied; " : ": ")
              << findings.modules.size() << " modules; "
              << (same ? "nothing changed"
                       : fmt::format("{} linked, {} removed", changes.linked.size(),
                                     changes.removed.size()))
              << std::endl;
    return STATUS_GOOD;
}

int ShowReports(const Arguments& arguments) {
    const auto reports = ReadAll(arguments.reports);
    if (!arguments.html.empty()) {
        Platform::ReplaceFile(arguments.html, RenderHtml(reports));
    }
    if (!arguments.junit.empty()) {
        Platform::ReplaceFile(arguments.junit, RenderJunit(reports));
    }
    Terminal terminal(stdout, !arguments.html.empty() || !arguments.junit.empty());
    for (const NamedReport& report : reports) {
        PrintHead(terminal, report);
        PrintSummary(terminal, report.second);
    }
    return STATUS_GOOD;
}

int CompareReports(const Arguments& arguments) {
    const auto reports = ReadAll(arguments.reports);
    Terminal terminal(stdout, false);
    std::ranges::for_each(reports, [&](const auto& report) { PrintHead(terminal, report); });
    const auto changes = Compare(reports.at(0).second, reports.at(1).second);
    std::string counts;
    for (const auto& [trend, title, colour] : TITLES) {
        const auto count = std::ranges::count(changes, trend, &Change::trend);
        counts += fmt::format("{}{} {}", counts.empty() ? "" : ", ", count, title);
        if (count > 0) {
            terminal.Line(fmt::format("{}:", title), colour);
        }
        for (const Change& change : changes) {
            if (change.trend == trend) {
                terminal.Line("  " + change.text);
            }
        }
    }
    terminal.Line(counts);
    const bool isWorse = std::ranges::count(changes, Trend::Worse, &Change::trend) > 0;
    return isWorse ? STATUS_BAD : STATUS_GOOD;
}

}  // namespace Tarnex::Assay
