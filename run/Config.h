#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/support/BrokenCodecs.h"
#include "core/support/BrokenPlugins.h"
#include "core/support/CheckType.h"

namespace Tarnex::Core::Utils {

/// The orders of a run.
struct Config {
    CheckType checkType;
    BrokenPlugins brokenPlugins;  ///< known to the parent already
    BrokenCodecs brokenCodecs;    ///< known to the parent already
    std::int64_t checkTimeoutInSeconds = 0;
    std::vector<std::string> verifiableCodecImpls;
    std::vector<std::string> verifiableCodecs;
    std::string extraDisabledPlugins;  ///< names joined by commas; used at the core's start alone
    std::string lastFailedLoadPlugin;
    std::string lastFailedCodecsTest;
    bool isUsingMultithreadingCodecChecking = false;
};

}  // namespace Tarnex::Core::Utils
