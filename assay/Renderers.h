#pragma once

#include <string>
#include <utility>
#include <vector>

#include "assay/Report.h"

namespace Tarnex::Assay {

/// A report with the name that it was given by, which labels it beside others.
using NamedReport = std::pair<std::string, Report>;

/// One page that needs nothing else, with the reports as data in it.
std::string RenderHtml(const std::vector<NamedReport>& reports);

/// A suite for each factory and implementation, a case for each item.
std::string RenderJunit(const std::vector<NamedReport>& reports);

}  // namespace Tarnex::Assay
