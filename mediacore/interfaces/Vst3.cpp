#include <fmt/format.h>
#include <travesty/factory.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>

#include "mediacore/interfaces/Interface.h"
#include "mediacore/interfaces/Listing.h"

namespace Tarnex::Core {
namespace {

constexpr char AUDIO_MODULE[] = "Audio Module Class";

/// The functions of a factory. Each version adds to those of the one before.
struct FactoryTable {
    v3_funknown object;
    v3_plugin_factory first;
    v3_plugin_factory_2 second;
    v3_plugin_factory_3 third;
};

/// An object begins with a pointer to its functions.
using Factory = const FactoryTable*;

// Modules of all compilers share this layout: tables without gaps, texts of fixed length, numbers
// of 32 bits.
constexpr std::size_t POINTER = sizeof(void*);
static_assert(offsetof(FactoryTable, object.query_interface) == 0);
static_assert(offsetof(FactoryTable, first.get_factory_info) == 3 * POINTER);
static_assert(offsetof(FactoryTable, first.num_classes) == 4 * POINTER);
static_assert(offsetof(FactoryTable, first.get_class_info) == 5 * POINTER);
static_assert(offsetof(FactoryTable, first.create_instance) == 6 * POINTER);
static_assert(offsetof(FactoryTable, second.get_class_info_2) == 7 * POINTER);
static_assert(offsetof(FactoryTable, third.get_class_info_utf16) == 8 * POINTER);
static_assert(sizeof(v3_tuid) == 16 && sizeof(v3_result) == 4);
static_assert(offsetof(v3_class_info, category) == 20 && sizeof(v3_class_info) == 116);
static_assert(offsetof(v3_class_info_2, category) == 20 && sizeof(v3_class_info_2) == 440);
static_assert(offsetof(v3_class_info_3, category) == 20 && sizeof(v3_class_info_3) == 696);

using EnterFunction = bool(void* library);
using GetFactoryFunction = Factory*();

void Enter(const SharedLibrary& library) {
    auto* const enter = library.Find<EnterFunction>("ModuleEntry");
    if (enter != nullptr && !enter(library.GetHandle())) {
        library.Refuse("refused to initialise");
    }
}

Factory& GetFactory(const SharedLibrary& library) {
    Factory* const factory = library.Get<GetFactoryFunction>("GetPluginFactory")();
    if (factory == nullptr || *factory == nullptr) {
        library.Refuse("has no VST3 plugin factory");
    }
    RequireFunction(library, (*factory)->object.query_interface, "queryInterface");
    RequireFunction(library, (*factory)->first.num_classes, "countClasses");
    RequireFunction(library, (*factory)->first.get_class_info, "getClassInfo");
    RequireFunction(library, (*factory)->first.create_instance, "createInstance");
    return *factory;
}

/// The factory in a later version of its interface; null if the module doesn't have that. Never
/// released, like the module.
Factory* FindVersion(const SharedLibrary& library, Factory& factory, int version,
                     const v3_tuid& id) {
    void* found = nullptr;
    if (factory->object.query_interface(&factory, id, &found) != V3_OK) {
        return nullptr;
    }
    auto* const newer = static_cast<Factory*>(found);
    if (newer == nullptr || *newer == nullptr) {
        library.Refuse(fmt::format(
            "claims to have version {} of the VST3 plugin factory, but gives none", version));
    }
    return newer;
}

/// A factory in all versions that it has. The later ones may be null.
struct Versions {
    Factory& first;
    Factory* second;
    Factory* third;
};

Versions GetVersions(const SharedLibrary& library) {
    Factory& first = GetFactory(library);
    const Versions all{first, FindVersion(library, first, 2, v3_plugin_factory_2_iid),
                       FindVersion(library, first, 3, v3_plugin_factory_3_iid)};
    if (all.second != nullptr) {
        RequireFunction(library, (*all.second)->second.get_class_info_2, "getClassInfo2");
    }
    if (all.third != nullptr) {
        RequireFunction(library, (*all.third)->third.get_class_info_utf16, "getClassInfoUnicode");
    }
    return all;
}

/// Nothing if the factory gives no information in this version.
template <class Info>
std::optional<std::string> ReadCategory(Factory& factory,
                                        v3_result(V3_API* read)(void*, std::int32_t, Info*),
                                        std::int32_t index) {
    Info info{};
    if (read(&factory, index, &info) != V3_OK) {
        return std::nullopt;
    }
    return std::string(info.category, strnlen(info.category, sizeof(info.category)));
}

/// Asks in every version, because hosts do. One answer is enough: only the third version can give
/// the texts of some modules.
std::string ReadCategory(const SharedLibrary& library, const Versions& versions,
                         std::int32_t index) {
    auto category = ReadCategory(versions.first, versions.first->first.get_class_info, index);
    const auto prefer = [&](std::optional<std::string> other) {
        category = other ? std::move(other) : category;
    };
    if (versions.second != nullptr) {
        prefer(ReadCategory(*versions.second, (*versions.second)->second.get_class_info_2, index));
    }
    if (versions.third != nullptr) {
        prefer(ReadCategory(*versions.third, (*versions.third)->third.get_class_info_utf16, index));
    }
    if (!category) {
        library.Refuse(fmt::format("doesn't describe VST3 class {}", index));
    }
    return *category;
}

void Check(const SharedLibrary& library) {
    Enter(library);
    const Versions versions = GetVersions(library);
    const std::int32_t count = versions.first->first.num_classes(&versions.first);
    RequireCredible(library, count, "VST3 classes");
    bool hasAudioModule = false;
    for (std::int32_t index = 0; index < count; ++index) {
        hasAudioModule |= ReadCategory(library, versions, index) == AUDIO_MODULE;
    }
    if (!hasAudioModule) {
        library.Refuse(fmt::format("describes no VST3 class of the category {}", AUDIO_MODULE));
    }
}

}  // namespace

constinit const Interface VST3{{"GetPluginFactory"}, Check};

}  // namespace Tarnex::Core
