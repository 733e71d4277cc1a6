#include <ladspa.h>

#include "core/media/Factories.h"
#include "core/media/PluginFactories.h"
#include "mediacore/PluginList.h"
#include "mediacore/SharedLibrary.h"

namespace Tarnex::Proc {

std::vector<std::string> FilterFactory::GetPluginList() {
    return Core::GetPlugins(Core::FILTER_FACTORY);
}

void FilterFactory::TryToLoadModule(const std::string& plugin) {
    const Core::SharedLibrary library(Core::SharedLibrary::FindFile(plugin));
    if (library.Get<decltype(ladspa_descriptor)>("ladspa_descriptor")(0) == nullptr) {
        library.Refuse("describes no filter");
    }
}

}  // namespace Tarnex::Proc
