// Loads modules and calls their entry points as the factories do, with nothing around it.
// Usage: bare_loop [FACTORY FILE]...; a FACTORY without an interface below means our own
// interface.

#include <clap/entry.h>
#include <clap/plugin-factory.h>
#include <dlfcn.h>
#include <frei0r.h>
#include <ladspa.h>
#include <lv2/core/lv2.h>
#include <travesty/factory.h>
#include <vamp/vamp.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <map>
#include <string>

#include "core/module/Module.h"

namespace {

template <class Function>
Function* Find(void* module, const char* name) {
    return reinterpret_cast<Function*>(dlsym(module, name));
}

bool TryEffect(void* module, const std::string&) {
    auto* const initialise = Find<decltype(f0r_init)>(module, "f0r_init");
    auto* const getInfo = Find<decltype(f0r_get_plugin_info)>(module, "f0r_get_plugin_info");
    if (initialise == nullptr || getInfo == nullptr || initialise() < 0) {
        return false;
    }
    for (const char* name : {"f0r_deinit", "f0r_get_param_info", "f0r_construct", "f0r_destruct",
                             "f0r_set_param_value", "f0r_get_param_value"}) {
        if (dlsym(module, name) == nullptr) {
            return false;
        }
    }
    f0r_plugin_info_t info{};
    getInfo(&info);
    return info.frei0r_version == FREI0R_MAJOR_VERSION &&
           (dlsym(module, "f0r_update") != nullptr || dlsym(module, "f0r_update2") != nullptr);
}

/// The number of filters, or -1 if one of them is incomplete.
template <class Describe>
int CountFilters(Describe describe) {
    for (int count = 0;; ++count) {
        const auto* filter = describe(static_cast<unsigned>(count));
        if (filter == nullptr) {
            return count;
        }
        if (filter->instantiate == nullptr || filter->run == nullptr ||
            filter->cleanup == nullptr) {
            return -1;
        }
    }
}

int CountFiltersOfLibrary(decltype(lv2_lib_descriptor)* describe, const std::string& file) {
    const LV2_Feature* const noFeatures[] = {nullptr};
    const auto* library = describe(file.substr(0, file.rfind('/') + 1).c_str(), noFeatures);
    if (library == nullptr) {
        return 0;
    }
    const int count =
        CountFilters([&](unsigned index) { return library->get_plugin(library->handle, index); });
    library->cleanup(library->handle);
    return count;
}

enum class Result { Absent, Good, Bad };

Result ToResult(bool isGood) {
    return isGood ? Result::Good : Result::Bad;
}

Result TryLadspa(void* module, const std::string&) {
    auto* const describe = Find<decltype(ladspa_descriptor)>(module, "ladspa_descriptor");
    return describe == nullptr ? Result::Absent : ToResult(CountFilters(describe) > 0);
}

Result TryLv2(void* module, const std::string& file) {
    auto* const single = Find<decltype(lv2_descriptor)>(module, "lv2_descriptor");
    auto* const library = Find<decltype(lv2_lib_descriptor)>(module, "lv2_lib_descriptor");
    if (single == nullptr && library == nullptr) {
        return Result::Absent;
    }
    const int ofSingle = single == nullptr ? 0 : CountFilters(single);
    const int ofLibrary = library == nullptr ? 0 : CountFiltersOfLibrary(library, file);
    return ToResult(ofSingle >= 0 && ofLibrary >= 0 && ofSingle + ofLibrary > 0);
}

Result TryClap(void* module, const std::string& file) {
    const auto* entry = Find<const clap_plugin_entry_t>(module, "clap_entry");
    if (entry == nullptr) {
        return Result::Absent;
    }
    const void* found = clap_version_is_compatible(entry->clap_version) && entry->init(file.c_str())
                            ? entry->get_factory(CLAP_PLUGIN_FACTORY_ID)
                            : nullptr;
    const auto* factory = static_cast<const clap_plugin_factory_t*>(found);
    const unsigned count = factory == nullptr ? 0 : factory->get_plugin_count(factory);
    for (unsigned index = 0; index < count; ++index) {
        const auto* plugin = factory->get_plugin_descriptor(factory, index);
        if (plugin == nullptr || plugin->id == nullptr || plugin->name == nullptr) {
            return Result::Bad;
        }
    }
    return ToResult(count > 0);
}

Result TryVst3(void* module, const std::string&) {
    struct Factory {
        const v3_plugin_factory_cpp* functions;
    };
    auto* const getFactory = Find<Factory*()>(module, "GetPluginFactory");
    if (getFactory == nullptr) {
        return Result::Absent;
    }
    auto* const enter = Find<bool(void*)>(module, "ModuleEntry");
    Factory* const factory = enter == nullptr || enter(module) ? getFactory() : nullptr;
    const int count = factory == nullptr ? 0 : factory->functions->v1.num_classes(factory);
    bool hasPlugin = false;
    for (int index = 0; index < count; ++index) {
        v3_class_info info{};
        factory->functions->v1.get_class_info(factory, index, &info);
        hasPlugin |= std::strcmp(info.category, "Audio Module Class") == 0;
    }
    return ToResult(hasPlugin);
}

bool TryFilter(void* module, const std::string& file) {
    bool isGood = false;
    for (auto* tryIt : {TryLadspa, TryLv2, TryClap, TryVst3}) {
        const Result result = tryIt(module, file);
        if (result == Result::Bad) {
            return false;
        }
        isGood |= result == Result::Good;
    }
    return isGood;
}

bool TryAnalyzer(void* module, const std::string&) {
    auto* const describe =
        Find<decltype(vampGetPluginDescriptor)>(module, "vampGetPluginDescriptor");
    return describe != nullptr && describe(VAMP_API_VERSION, 0) != nullptr;
}

bool TryOwn(void* module) {
    namespace Module = Tarnex::Module;
    auto* const getVersion = Find<Module::VersionFunction>(module, "TarnexModuleVersion");
    auto* const initialise = Find<Module::InitializeFunction>(module, "TarnexModuleInitialize");
    Module::Description description;
    if (getVersion == nullptr || initialise == nullptr || getVersion() != Module::VERSION ||
        !initialise(description)) {
        return false;
    }
    if (description.ogl != nullptr) {
        description.ogl->Start();
        description.ogl->Stop();
    }
    return true;
}

/// Only our own modules may throw.
bool Try(void* module, const std::string& factory, const std::string& file) {
    static const std::map<std::string, bool (*)(void*, const std::string&)> trials{
        {"EffectFactory", TryEffect},
        {"FilterFactory", TryFilter},
        {"AnalyzerFactory", TryAnalyzer}};
    const auto trial = trials.find(factory);
    try {
        return trial == trials.end() ? TryOwn(module) : trial->second(module, file);
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

int main(int argc, char** argv) {
    int loaded = 0;
    for (int i = 1; i + 1 < argc; i += 2) {
        void* const module = dlopen(argv[i + 1], RTLD_NOW | RTLD_LOCAL);
        loaded += module != nullptr && Try(module, argv[i], argv[i + 1]) ? 1 : 0;
    }
    std::printf("%d\n", loaded);
    return 0;
}
