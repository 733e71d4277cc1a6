#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/support/BrokenCodecs.h"
#include "core/support/BrokenPlugins.h"
#include "core/support/CheckType.h"

namespace Tarnex::Core::Utils {

/// What a run has to do.
struct Config {
    CheckType checkType;
    BrokenPlugins brokenPlugins;  ///< already known to the parent
    BrokenCodecs brokenCodecs;    ///< already known to the parent
    std::int64_t checkTimeoutInSeconds = 0;
    std::vector<std::string> verifiableCodecImpls;
    std::vector<std::string> verifiableCodecs;
    std::string extraDisabledPlugins;  ///< names joined by commas; only for the start of the core
    std::string lastFailedLoadPlugin;
    std::string lastFailedCodecsTest;
    bool isUsingMultithreadingCodecChecking = false;
};

}  // namespace Tarnex::Core::Utils
