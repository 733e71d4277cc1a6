#pragma once

#include "assay/Report.h"
#include "platform/Terminal.h"

namespace Tarnex::Assay {

inline constexpr std::size_t LONGEST_LINE = 300;

/// A line for the item if it is bad, with reason and company, in at most `columns` characters.
void PrintItem(Platform::Terminal& terminal, const Parent::Item& item,
               std::size_t columns = LONGEST_LINE);

/// Counts, as many bad items as fit a screen with the command that shows each again, and what
/// hindered the check.
void PrintSummary(Platform::Terminal& terminal, const Report& report);

}  // namespace Tarnex::Assay
