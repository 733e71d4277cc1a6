#pragma once

#include <string>

#include "core/media/MediaTypes.h"

namespace Tarnex::Modules {

// Libraries of coders loop or abort on absurd input, so it is refused before it gets there.

/// Why no encoder takes such pictures, empty if one may.
[[nodiscard]] std::string FindFault(const Proc::FrameInfo& info, const Proc::FrameRate& rate);

/// Why no encoder takes such sound, empty if one may.
[[nodiscard]] std::string FindFault(const Proc::SampleInfo& info);

}  // namespace Tarnex::Modules
