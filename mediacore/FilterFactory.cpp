#include <fmt/format.h>
#include <ladspa.h>
#include <lv2/core/lv2.h>

#include <boost/filesystem.hpp>
#include <memory>

#include "core/media/Factories.h"
#include "core/media/PluginFactories.h"
#include "mediacore/LoadOnce.h"
#include "mediacore/PluginList.h"
#include "mediacore/SharedLibrary.h"

namespace Tarnex::Proc {
namespace {

using Core::SharedLibrary;

bool IsNamed(const LADSPA_Descriptor& filter) {
    return filter.Label != nullptr;
}

bool IsNamed(const LV2_Descriptor& filter) {
    return filter.URI != nullptr && *filter.URI != '\0';
}

/// The first missing part that hosts use without a check; null if nothing is missing.
template <class Descriptor>
const char* FindMissing(const Descriptor& filter) {
    return !IsNamed(filter)                ? "name"
           : filter.instantiate == nullptr ? "instantiate"
           : filter.run == nullptr         ? "run"
           : filter.cleanup == nullptr     ? "cleanup"
                                           : nullptr;
}

/// `describe` returns the filter at an index, or null after the last one. Returns the number of
/// filters.
template <class Describe>
unsigned CheckFilters(const SharedLibrary& library, Describe describe) {
    unsigned count = 0;
    for (; const auto* filter = describe(count); ++count) {
        if (const char* missing = FindMissing(*filter)) {
            library.Refuse(fmt::format("filter {} has no {}", count, missing));
        }
    }
    return count;
}

void DestroyLibrary(const LV2_Lib_Descriptor* description) {
    if (description->cleanup != nullptr) {
        description->cleanup(description->handle);
    }
}

unsigned CheckLibrary(const SharedLibrary& library, const std::string& file,
                      decltype(lv2_lib_descriptor)* describe) {
    const std::string bundle = boost::filesystem::path(file).parent_path().string() + "/";
    const LV2_Feature* const noFeatures[] = {nullptr};
    const std::unique_ptr<const LV2_Lib_Descriptor, decltype(&DestroyLibrary)> description(
        describe(bundle.c_str(), noFeatures), DestroyLibrary);
    if (description == nullptr) {
        return 0;
    }
    if (description->get_plugin == nullptr) {
        library.Refuse("describes a library without get_plugin");
    }
    return CheckFilters(library, [&](unsigned index) {
        return description->get_plugin(description->handle, index);
    });
}

void RequireFilters(const SharedLibrary& library, unsigned count, const char* interface) {
    if (count == 0) {
        library.Refuse(fmt::format("describes no {} filter", interface));
    }
}

/// False if the module doesn't have this interface.
bool CheckLadspa(const SharedLibrary& library) {
    auto* const describe = library.Find<decltype(ladspa_descriptor)>("ladspa_descriptor");
    if (describe != nullptr) {
        RequireFilters(library, CheckFilters(library, describe), "LADSPA");
    }
    return describe != nullptr;
}

/// False if the module doesn't have this interface.
bool CheckLv2(const SharedLibrary& library, const std::string& file) {
    auto* const describe = library.Find<decltype(lv2_descriptor)>("lv2_descriptor");
    auto* const describeLibrary = library.Find<decltype(lv2_lib_descriptor)>("lv2_lib_descriptor");
    if (describe == nullptr && describeLibrary == nullptr) {
        return false;
    }
    const unsigned single = describe == nullptr ? 0 : CheckFilters(library, describe);
    const unsigned shared =
        describeLibrary == nullptr ? 0 : CheckLibrary(library, file, describeLibrary);
    RequireFilters(library, single + shared, "LV2");
    return true;
}

void Load(const Core::ModuleFile& file) {
    const SharedLibrary library(file);
    const bool isLadspa = CheckLadspa(library);
    const bool isLv2 = CheckLv2(library, file.path);
    if (!isLadspa && !isLv2) {
        library.Refuse(
            "has no entry point ladspa_descriptor, lv2_descriptor or lv2_lib_descriptor");
    }
}

}  // namespace

std::vector<std::string> FilterFactory::GetPluginList() {
    return Core::GetPlugins(Core::FILTER_FACTORY);
}

void FilterFactory::TryToLoadModule(const std::string& plugin) {
    static auto& once = *new Core::LoadOnce();
    const Core::ModuleFile file = SharedLibrary::FindFile(plugin);
    once(file, [&] { Load(file); });
}

}  // namespace Tarnex::Proc
