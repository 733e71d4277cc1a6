#pragma once

#include "core/media/MediaTypes.h"

namespace Tarnex::Core::Utils {

/// The colour space of every encoder test: BT.709.
inline constexpr Proc::ColorSpace TEST_COLOR_SPACE{1, 1, 1};

}  // namespace Tarnex::Core::Utils
