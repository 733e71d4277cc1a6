#include "mediacore/ModuleRegistry.h"

#include <fmt/format.h>

#include <map>

#include "core/support/CodecConfig.h"
#include "core/support/Mutex.h"
#include "mediacore/LoadOnce.h"
#include "mediacore/SharedLibrary.h"
#include "platform/TerminalText.h"

namespace Tarnex::Core {
namespace {

/// Never freed: the watch-dog may end the process while a module is being loaded.
struct Registry {
    LoadOnce once;
    Mutex mutex;
    std::map<std::string, Module::Description> descriptions TARNEX_GUARDED_BY(mutex);  // by file
    ShutdownHandlers handlers TARNEX_GUARDED_BY(mutex);
};

Registry& GetRegistry() {
    static Registry& registry = *new Registry();
    return registry;
}

void RequireVersion(const SharedLibrary& library) {
    const auto version = library.Get<Module::VersionFunction>("TarnexModuleVersion")();
    if (version != Module::VERSION) {
        library.Refuse(fmt::format("has version {} of the module interface instead of {}", version,
                                   Module::VERSION));
    }
}

void RememberShutdown(const std::string& plugin, const SharedLibrary& library) {
    auto* const shutdown = library.Find<Module::ShutdownFunction>("TarnexModuleShutdown");
    if (shutdown != nullptr) {
        Registry& registry = GetRegistry();
        const Lock lock(registry.mutex);
        registry.handlers.emplace_back(plugin, shutdown);
    }
}

void RequireUsableName(const SharedLibrary& library, Module::ICodecModule& codecs) {
    const std::string implementation = codecs.GetImplementation();
    if (!Utils::IsImplementationName(implementation)) {
        library.Refuse(fmt::format("has an unusable implementation name \"{}\"",
                                   Platform::MakePrintable(implementation)));
    }
}

Module::Description Load(const ModuleFile& file) {
    const SharedLibrary library(file);
    RequireVersion(library);
    auto* const initialise = library.Get<Module::InitializeFunction>("TarnexModuleInitialize");
    Module::Description description;
    if (!initialise(description)) {
        library.Refuse("refused to initialise");
    }
    RememberShutdown(file.plugin, library);
    const auto& [codecs, parser, muxer, ogl] = description;
    if (codecs == nullptr && parser == nullptr && muxer == nullptr && ogl == nullptr) {
        library.Refuse("offers nothing");
    }
    if (codecs != nullptr) {
        RequireUsableName(library, *codecs);
    }
    return description;
}

}  // namespace

Module::Description LoadModule(const std::string& plugin) {
    Registry& registry = GetRegistry();
    const ModuleFile file = SharedLibrary::FindFile(plugin);
    registry.once(file, [&] {
        const Module::Description description = Load(file);
        const Lock lock(registry.mutex);
        registry.descriptions[file.path] = description;
    });
    const Lock lock(registry.mutex);
    return registry.descriptions[file.path];
}

ShutdownHandlers GetShutdownHandlers() {
    Registry& registry = GetRegistry();
    const Lock lock(registry.mutex);
    return {registry.handlers.rbegin(), registry.handlers.rend()};
}

}  // namespace Tarnex::Core
