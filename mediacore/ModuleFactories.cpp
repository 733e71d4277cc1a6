#include "core/media/Factories.h"
#include "core/media/PluginFactories.h"
#include "mediacore/ModuleRegistry.h"
#include "mediacore/PluginList.h"
#include "mediacore/SharedLibrary.h"

namespace Tarnex::Proc {
namespace {

template <class Kind>
void RequireKind(const std::string& plugin, Kind* Module::Description::*kind, const char* name) {
    if (Core::LoadModule(plugin).*kind == nullptr) {
        Core::SharedLibrary::FindFile(plugin).Refuse(std::string("offers no ") + name);
    }
}

}  // namespace

std::vector<std::string> CodecFactoryImpl::GetPluginList() {
    return Core::GetPlugins(Core::CODEC_FACTORY);
}

void CodecFactoryImpl::TryToLoadModule(const std::string& plugin) {
    RequireKind(plugin, &Module::Description::codecs, "codecs");
}

std::vector<std::string> MuxerFactoryImpl::GetPluginList() {
    return Core::GetPlugins(Core::MUXER_FACTORY);
}

void MuxerFactoryImpl::TryToLoadModule(const std::string& plugin) {
    RequireKind(plugin, &Module::Description::muxer, "muxer");
}

std::vector<std::string> ParserFactoryImpl::GetPluginList() {
    return Core::GetPlugins(Core::PARSER_FACTORY);
}

void ParserFactoryImpl::TryToLoadModule(const std::string& plugin) {
    RequireKind(plugin, &Module::Description::parser, "parser");
}

}  // namespace Tarnex::Proc
