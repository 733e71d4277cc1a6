#pragma once

#include <string>

#include "report/Report.h"

namespace Tarnex::Reports {

/// Bad items that get a series of their own; the rest are counted. Keeps a machine on which
/// everything is bad from flooding the server of all machines.
inline constexpr std::size_t MOST_BAD_ITEMS = 200;

/// The report in Prometheus' text format 0.0.4, as the textfile collector of the node exporter
/// reads it. Accepted items count, but aren't among the bad ones. Throws `Tarnex::Exception` if the
/// report doesn't say when the check was.
std::string RenderMetrics(const Report& report);

}  // namespace Tarnex::Reports
