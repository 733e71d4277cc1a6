#pragma once

#include <array>

#include "mediacore/SharedLibrary.h"

namespace Tarnex::Core {

/// A plugin interface that others define.
struct Interface {
    /// A module has the interface if it exports one of these. The second may be null.
    std::array<const char*, 2> entryPoints;

    /// Calls the entry points as a host does that lists the module's plugins. Refuses the module if
    /// a host could use none of them, or couldn't describe one. May throw what the module throws.
    void (*check)(const SharedLibrary& library);
};

extern const Interface FREI0R;
extern const Interface LADSPA;
extern const Interface LV2;
extern const Interface CLAP;
extern const Interface VST3;
extern const Interface VAMP;

}  // namespace Tarnex::Core
