#include <fmt/format.h>
#include <vamp/vamp.h>

#include "core/media/Factories.h"
#include "core/media/PluginFactories.h"
#include "mediacore/LoadOnce.h"
#include "mediacore/PluginList.h"
#include "mediacore/SharedLibrary.h"

namespace Tarnex::Proc {
namespace {

void Load(const Core::ModuleFile& file) {
    const Core::SharedLibrary library(file);
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

std::vector<std::string> AnalyzerFactory::GetPluginList() {
    return Core::GetPlugins(Core::ANALYZER_FACTORY);
}

void AnalyzerFactory::TryToLoadModule(const std::string& plugin) {
    static auto& once = *new Core::LoadOnce();
    const Core::ModuleFile file = Core::SharedLibrary::FindFile(plugin);
    once(file, [&] { Load(file); });
}

}  // namespace Tarnex::Proc
