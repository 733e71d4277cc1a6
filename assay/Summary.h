#pragma once

#include "assay/Report.h"
#include "assay/Terminal.h"

namespace Tarnex::Assay {

/// "crashed  amp: SIGSEGV"
std::string DescribeItem(const Parent::Item& item);

/// "3 good, 1 crashed"
std::string DescribeCounts(const std::vector<Parent::Item>& items);

/// Red for what is bad.
Colour GetColour(Parent::Verdict verdict);

/// Writes counts, as many bad items as fit a screen with the command that shows each again, and
/// what hindered the check.
void PrintSummary(Terminal& terminal, const Report& report);

}  // namespace Tarnex::Assay
