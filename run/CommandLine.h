#pragma once

#include "run/Config.h"

namespace Tarnex::Core::Utils {

/// Parses the positional arguments and reads the list files. Returns false if they are refused:
/// then the reason is logged (or written to standard output if there are no arguments at all), and
/// `config` is unchanged. Throws `std::invalid_argument` or `std::out_of_range` for a time-out that
/// isn't a number, and `Tarnex::Exception` for an unknown check type or a malformed list file.
[[nodiscard]] bool ParseCommandLine(int argc, char** argv, Config& config);

}  // namespace Tarnex::Core::Utils
