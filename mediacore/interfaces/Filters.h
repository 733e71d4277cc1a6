#pragma once

#include <fmt/format.h>

#include "mediacore/SharedLibrary.h"

/// What LADSPA and LV2 share: descriptors that a module gives by index.
namespace Tarnex::Core {

/// The first missing part that hosts use without a check; null if nothing is missing.
template <class Descriptor>
const char* FindMissing(const Descriptor& filter, bool isNamed) {
    return !isNamed                        ? "name"
           : filter.instantiate == nullptr ? "instantiate"
           : filter.run == nullptr         ? "run"
           : filter.cleanup == nullptr     ? "cleanup"
                                           : nullptr;
}

/// `describe` returns the filter at an index, or null after the last one. `isNamed` says whether a
/// filter has a usable name. Returns the number of filters.
template <class Describe, class IsNamed>
unsigned CheckFilters(const SharedLibrary& library, Describe describe, IsNamed isNamed) {
    unsigned count = 0;
    for (; const auto* filter = describe(count); ++count) {
        if (const char* missing = FindMissing(*filter, isNamed(*filter))) {
            library.Refuse(fmt::format("filter {} has no {}", count, missing));
        }
    }
    return count;
}

}  // namespace Tarnex::Core
