#include <cstdio>
#include <optional>

#include "assay/Commands.h"
#include "assay/Names.h"
#include "assay/Show.h"
#include "assay/Summary.h"
#include "platform/AtomicFile.h"
#include "report/HtmlPage.h"
#include "report/Junit.h"
#include "report/Metrics.h"

namespace Tarnex::Assay {
namespace {

/// "-" is standard output.
void WriteFile(const std::string& path, const std::string& text) {
    if (path == "-") {
        // Who can't be written to is told at the end of the command.
        std::fwrite(text.data(), 1, text.size(), stdout);
    } else {
        Platform::ReplaceFile(path, text);
    }
}

}  // namespace

int ShowReports(const Arguments& arguments) {
    if (!arguments.metrics.empty() && arguments.reports.size() > 1) {
        throw UnknownName("--metrics takes one report: each machine has a file of its own");
    }
    auto accepted = ReadAccepted(arguments.accept);
    std::optional<Reports::HtmlPage> page;
    std::optional<Reports::Junit> junit;
    if (!arguments.html.empty()) {
        page.emplace();
    }
    if (!arguments.junit.empty()) {
        junit.emplace(arguments.reports.size() > 1);
    }
    Platform::Terminal terminal(stdout, page || junit || !arguments.metrics.empty());
    int status = STATUS_GOOD;
    // One after the other: a thousand of them don't fit into memory.
    for (const std::string& path : arguments.reports) {
        NamedReport named(path, ReadReport(path));
        if (accepted) {
            accepted->Mark(named.second.items);
        }
        if (!arguments.metrics.empty()) {
            WriteFile(arguments.metrics, Reports::RenderMetrics(named.second));
        }
        if (page) {
            page->Add(path, named.second);
        }
        if (junit) {
            junit->Add(path, named.second);
        }
        PrintHead(terminal, named);
        PrintSummary(terminal, named.second);
        status = std::max(status, GetStatus(named.second));
    }
    if (accepted) {
        WarnOfUnused(*accepted);
    }
    if (page) {
        WriteFile(arguments.html, page->Render());
    }
    if (junit) {
        WriteFile(arguments.junit, junit->Render());
    }
    return page || junit || !arguments.metrics.empty() ? STATUS_GOOD : status;
}

}  // namespace Tarnex::Assay
