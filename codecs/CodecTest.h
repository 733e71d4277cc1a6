#pragma once

#include <string>

#include "core/support/CodecConfig.h"

namespace Tarnex::Core::Utils {

/// Creates the coder, seeks once and reads once. The result is the failure text, empty if the coder
/// works; nothing is thrown. The input of a decoder comes from a sample file or from an encoder of
/// a synthetic stream, as a line of INFO severity tells. Thread-safe.
[[nodiscard]] std::string TestCodec(const CodecConfig& config);

}  // namespace Tarnex::Core::Utils
