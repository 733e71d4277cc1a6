#pragma once

#include <string>

#include "core/support/CodecConfig.h"

namespace Tarnex::Core::Utils {

/// Takes a line about a decoder test's input.
using InputLog = void(const std::string& line);

/// Creates the coder, seeks once and reads once. Returns the failure text, which is empty if the
/// coder works. Throws nothing. A decoder reads a sample file or, without one, the output of an
/// encoder of a synthetic stream; `logInput` gets a line that says which, before the input is made.
/// Thread-safe if `logInput` is.
[[nodiscard]] std::string TestCodec(const CodecConfig& config, InputLog* logInput);

}  // namespace Tarnex::Core::Utils
