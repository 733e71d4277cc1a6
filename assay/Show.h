#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Terminal.h"
#include "report/Accepted.h"
#include "report/Report.h"

namespace Tarnex::Assay {

/// A report with the path that it was read from.
using NamedReport = std::pair<std::string, Reports::Report>;

/// The report of the last check, whether it is there or not.
boost::filesystem::path GetNewestReport();

/// "-" is standard input. Throws `Tarnex::Exception` for what isn't a report.
Reports::Report ReadReport(const std::string& path);
std::vector<NamedReport> ReadReports(const std::vector<std::string>& paths);

/// The list that `--accept` names; none without the option. Throws as `AcceptedItems` does.
std::optional<Reports::AcceptedItems> ReadAccepted(const std::string& path);

/// A warning on standard error for each line that nothing matched.
void WarnOfUnused(const Reports::AcceptedItems& accepted);

/// Which report it is, and of which machine.
void PrintHead(Platform::Terminal& terminal, const NamedReport& named);

}  // namespace Tarnex::Assay
