#pragma once

#include "exercise/vst3/Headers.h"

namespace Tarnex::Exercise {

// Both live as long as the process.

/// The context that plugins are initialised with: an application that makes messages.
v3_funknown** GetVst3Host();

/// Takes the edits and the wishes of a plugin and does nothing.
v3_component_handler** GetVst3Handler();

}  // namespace Tarnex::Exercise
