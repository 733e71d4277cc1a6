#pragma once

#include <string>

#include "core/support/BrokenCodecs.h"
#include "core/support/BrokenPlugins.h"

namespace Tarnex::Core::Utils {

/// The findings of both phases.
struct CheckResult {
    std::string errorInfo;  ///< failure texts of the plugin phase, then of the codec phase
    BrokenCodecs brokenCodecs;
    BrokenPlugins brokenPlugins;
};

}  // namespace Tarnex::Core::Utils
