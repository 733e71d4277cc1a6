#pragma once

#include <string>
#include <vector>

#include "platform/Process.h"

namespace Tarnex::Reports {

/// What the process writes on standard output until it ends; a process that is silent for ten
/// seconds is ended.
std::string AwaitOutput(Platform::Process& process);

}  // namespace Tarnex::Reports
