#pragma once

#include "run/Config.h"

namespace Tarnex::Core::Utils {

/// Turns the positional arguments into the orders of a run, list files included. False when they
/// are refused, with the reason on the log (on standard output if there are no arguments at all);
/// then `config` is as it was. Throws `std::invalid_argument` or `std::out_of_range` for a time-out
/// that is no number, `Tarnex::Exception` for an unknown check type or a malformed list file.
[[nodiscard]] bool ParseCommandLine(int argc, char** argv, Config& config);

}  // namespace Tarnex::Core::Utils
