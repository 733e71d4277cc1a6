#include "core/media/Factories.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "core/media/PluginFactories.h"
#include "mediacore/LoadOnce.h"
#include "mediacore/PluginList.h"
#include "mediacore/SharedLibrary.h"
#include "mediacore/interfaces/Interface.h"

namespace Tarnex::Proc {
namespace {

using Core::Interface;
using Core::SharedLibrary;
using Interfaces = std::initializer_list<const Interface*>;

std::vector<const char*> GetEntryPoints(const Interface& interface) {
    std::vector<const char*> names(interface.entryPoints.begin(), interface.entryPoints.end());
    std::erase(names, nullptr);
    return names;
}

bool Has(const SharedLibrary& library, const Interface& interface) {
    return std::ranges::any_of(GetEntryPoints(interface), [&](const char* name) {
        return library.Find<void>(name) != nullptr;
    });
}

[[noreturn]] void RefuseUnknown(const SharedLibrary& library, Interfaces interfaces) {
    std::vector<const char*> names;
    for (const Interface* interface : interfaces) {
        std::ranges::copy(GetEntryPoints(*interface), std::back_inserter(names));
    }
    const char* const last = names.back();
    names.pop_back();
    library.Refuse(fmt::format("has no entry point {}{}{}", fmt::join(names, ", "),
                               names.empty() ? "" : " or ", last));
}

/// Checks each of the interfaces that the module has.
void Load(const Core::ModuleFile& file, Interfaces interfaces) {
    const SharedLibrary library(file);
    bool isKnown = false;
    for (const Interface* interface : interfaces) {
        if (Has(library, *interface)) {
            interface->check(library);
            isKnown = true;
        }
    }
    if (!isKnown) {
        RefuseUnknown(library, interfaces);
    }
}

void LoadOnce(Core::LoadOnce& once, const std::string& plugin, Interfaces interfaces) {
    const Core::ModuleFile file = SharedLibrary::FindFile(plugin);
    once(file, [&] { Load(file, interfaces); });
}

}  // namespace

std::vector<std::string> EffectFactory::GetPluginList() {
    return Core::GetPlugins(Core::EFFECT_FACTORY);
}

void EffectFactory::TryToLoadModule(const std::string& plugin) {
    static auto& once = *new Core::LoadOnce();
    LoadOnce(once, plugin, {&Core::FREI0R});
}

std::vector<std::string> FilterFactory::GetPluginList() {
    return Core::GetPlugins(Core::FILTER_FACTORY);
}

void FilterFactory::TryToLoadModule(const std::string& plugin) {
    static auto& once = *new Core::LoadOnce();
    LoadOnce(once, plugin, {&Core::LADSPA, &Core::LV2, &Core::CLAP, &Core::VST3});
}

std::vector<std::string> AnalyzerFactory::GetPluginList() {
    return Core::GetPlugins(Core::ANALYZER_FACTORY);
}

void AnalyzerFactory::TryToLoadModule(const std::string& plugin) {
    static auto& once = *new Core::LoadOnce();
    LoadOnce(once, plugin, {&Core::VAMP});
}

}  // namespace Tarnex::Proc
