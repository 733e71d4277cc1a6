#include <fmt/format.h>

#include <boost/filesystem.hpp>
#include <iostream>
#include <iterator>

#include "assay/ItemLine.h"
#include "assay/Show.h"
#include "assay/UserState.h"
#include "core/support/Exception.h"
#include "platform/TerminalText.h"

namespace Tarnex::Assay {

boost::filesystem::path GetNewestReport() {
    return GetStateRoot() / "report.json";
}

Reports::Report ReadReport(const std::string& path) {
    if (path != "-") {
        return Reports::ReadReport(path);
    }
    try {
        return Reports::ParseReport({std::istreambuf_iterator<char>(std::cin), {}});
    } catch (const Exception& error) {
        throw Exception(std::string("standard input: ") + error.what());
    }
}

std::vector<NamedReport> ReadReports(const std::vector<std::string>& paths) {
    std::vector<NamedReport> reports;
    reports.reserve(paths.size());
    for (const std::string& path : paths) {
        reports.emplace_back(path, ReadReport(path));
    }
    return reports;
}

std::optional<Reports::AcceptedItems> ReadAccepted(const std::string& path) {
    return path.empty() ? std::nullopt : std::optional<Reports::AcceptedItems>(path);
}

void WarnOfUnused(const Reports::AcceptedItems& accepted) {
    for (const std::string& text : accepted.DescribeUnused()) {
        std::cerr << "assay: warning: " << Platform::MakePrintable(text) << std::endl;
    }
}

void PrintHead(Platform::Terminal& terminal, const NamedReport& named) {
    const auto& [name, report] = named;
    PrintWrapped(terminal, "",
                 fmt::format("{}: {}, {}, kernel {}{}", name, report.started,
                             report.machine.value("system", ""), report.machine.value("kernel", ""),
                             report.complete ? "" : ", not complete"));
}

}  // namespace Tarnex::Assay
