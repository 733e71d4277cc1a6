#pragma once

#include <string>

#include "core/media/MediaTypes.h"

namespace Tarnex::Modules {

// Some coder libraries loop or abort on absurd input, so we refuse it before they see it.

/// The reason why no encoder takes such pictures; empty if they are acceptable.
[[nodiscard]] std::string FindFault(const Proc::FrameInfo& info, const Proc::FrameRate& rate);

/// The reason why no encoder takes such sound; empty if it is acceptable.
[[nodiscard]] std::string FindFault(const Proc::SampleInfo& info);

}  // namespace Tarnex::Modules
