#include <ladspa.h>

#include "mediacore/interfaces/Filters.h"
#include "mediacore/interfaces/Interface.h"

namespace Tarnex::Core {
namespace {

bool IsNamed(const LADSPA_Descriptor& filter) {
    return filter.Label != nullptr;
}

void Check(const SharedLibrary& library) {
    auto* const describe = library.Get<decltype(ladspa_descriptor)>("ladspa_descriptor");
    if (CheckFilters(library, describe, IsNamed) == 0) {
        library.Refuse("describes no LADSPA filter");
    }
}

}  // namespace

constinit const Interface LADSPA{{"ladspa_descriptor"}, Check};

}  // namespace Tarnex::Core
