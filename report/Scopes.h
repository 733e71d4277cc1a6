#pragma once

#include "report/Report.h"

namespace Tarnex::Reports {

/// Whether the report's check was about the item, by its options.
bool IsAbout(const Report& report, const Parent::Item& item);

}  // namespace Tarnex::Reports
