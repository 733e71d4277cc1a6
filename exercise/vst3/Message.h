#pragma once

#include "exercise/vst3/Headers.h"

namespace Tarnex::Exercise {

/// A new message with an empty list of attributes and one reference, which the caller owns.
v3_message** MakeVst3Message();

}  // namespace Tarnex::Exercise
