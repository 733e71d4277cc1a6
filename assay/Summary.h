#pragma once

#include "platform/Terminal.h"
#include "report/Report.h"

namespace Tarnex::Assay {

using Reports::Json;
using Reports::Report;

/// While a check is under way: lines for the item if it is bad, which the summary may replace.
void PrintItem(Platform::Terminal& terminal, const Parent::Item& item);

/// Counts, the bad items, the worst first, as far as they fit the screen, and what hindered the
/// check. Bad items that were printed before and can't be removed aren't printed again.
void PrintSummary(Platform::Terminal& terminal, const Report& report);

/// The bad items and those that spoil others, the worst first.
std::vector<const Parent::Item*> GetBadItems(const Report& report);

/// What a summary of it ends a command with: a `Status`.
int GetStatus(const Report& report);

}  // namespace Tarnex::Assay
