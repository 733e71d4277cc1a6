#pragma once

#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "parent/Check.h"
#include "report/Facts.h"
#include "report/Known.h"

namespace Tarnex::Reports {

/// Which verdicts of earlier checks a check takes over.
struct CarryRules {
    bool all = false;  ///< else only those of items that ended a run
    std::chrono::seconds itemTime{20};
    std::string depth;  ///< of the exercises that are wanted
};

/// Modules of the factories from which the media core takes codecs, but for those that are known to
/// be so bad that it is started without them.
std::set<std::string> GetCodecModules(const std::vector<Parent::Item>& plugins);

/// Gives `plugins`, which is what an installation has now, the verdicts that still hold, and
/// returns those of exercises and codecs. `wanted` tells which items the check is about.
Parent::Carried CarryOver(const Known& known, const Facts& facts, const CarryRules& rules,
                          const Parent::CheckOptions& wanted, std::vector<Parent::Item>& plugins);

}  // namespace Tarnex::Reports
