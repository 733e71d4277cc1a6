#include <fmt/format.h>
#include <vamp/vamp.h>

#include "mediacore/interfaces/Interface.h"

namespace Tarnex::Core {
namespace {

void Check(const SharedLibrary& library) {
    auto* const describe =
        library.Get<decltype(vampGetPluginDescriptor)>("vampGetPluginDescriptor");
    const VampPluginDescriptor* descriptor = describe(VAMP_API_VERSION, 0);
    if (descriptor == nullptr) {
        library.Refuse("describes no analyser");
    }
    // Version 1 only lacks the operations at the end of the descriptor.
    if (descriptor->vampApiVersion < 1 || descriptor->vampApiVersion > VAMP_API_VERSION) {
        library.Refuse(fmt::format("has version {} of the Vamp interface instead of {}",
                                   descriptor->vampApiVersion, VAMP_API_VERSION));
    }
}

}  // namespace

constinit const Interface VAMP{{"vampGetPluginDescriptor"}, Check};

}  // namespace Tarnex::Core
