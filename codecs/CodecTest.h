#pragma once

#include <string>

#include "core/support/CodecConfig.h"

namespace Tarnex::Core::Utils {

/// Creates the coder, seeks once and reads once. Returns the failure text, which is empty if the
/// coder works. Throws nothing. A decoder reads a sample file or, without one, the output of an
/// encoder of a synthetic stream; a line of INFO severity says which. Thread-safe.
[[nodiscard]] std::string TestCodec(const CodecConfig& config);

}  // namespace Tarnex::Core::Utils
