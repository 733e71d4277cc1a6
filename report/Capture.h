#pragma once

#include <ctime>

#include "report/Facts.h"
#include "report/Known.h"

namespace Tarnex::Reports {

/// Finds what the verdicts of a check rest on, right after it, and adds it to the report. Items
/// that were taken over keep the ground that `known` has. A file that has changed since `started`
/// is no ground: nobody knows which of its contents was checked. `plugins` are all that the
/// installation lists. Starts the dynamic loader's listing for each module that is bad.
void AddGround(Report& report, const Installations::Installation& installation, const Facts& facts,
               const Known& known, const std::vector<Parent::Item>& plugins,
               const timespec& started);

}  // namespace Tarnex::Reports
