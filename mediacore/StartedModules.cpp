#include "mediacore/StartedModules.h"

#include "core/media/Factories.h"
#include "core/support/Text.h"
#include "mediacore/ModuleRegistry.h"

namespace Tarnex::Core {
namespace {

using Plugins = std::vector<std::string>;

/// Null if the module fails. The plugin phase reports that, so it is ignored here.
template <class Kind>
Kind* TryToStart(const std::string& plugin, Kind* Module::Description::*kind) {
    try {
        return LoadModule(plugin).*kind;
    } catch (...) {
        return nullptr;
    }
}

template <class Kind>
std::vector<Started<Kind>> Start(const Plugins& plugins, const Plugins& disabled,
                                 Kind* Module::Description::*kind) {
    std::vector<Started<Kind>> started;
    for (const std::string& plugin : plugins) {
        if (Utils::Contains(disabled, plugin)) {
            continue;
        }
        if (Kind* const module = TryToStart(plugin, kind)) {
            started.push_back({plugin, module});
        }
    }
    return started;
}

}  // namespace

StartedModules StartModules(const std::vector<std::string>& disabledPlugins) {
    using Module::Description;
    return {Start(Proc::CodecFactoryImpl::GetPluginList(), disabledPlugins, &Description::codecs),
            Start(Proc::ParserFactoryImpl::GetPluginList(), disabledPlugins, &Description::parser),
            Start(Proc::MuxerFactoryImpl::GetPluginList(), disabledPlugins, &Description::muxer)};
}

}  // namespace Tarnex::Core
