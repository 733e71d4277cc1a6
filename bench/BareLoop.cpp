// Loads modules and calls their entry points as the factories do, with nothing around it.
// Usage: bare_loop [FACTORY FILE]..., where any other factory than those of the interfaces below
// stands for the program's own interface.

#include <dlfcn.h>
#include <frei0r.h>
#include <ladspa.h>
#include <lv2/core/lv2.h>
#include <vamp/vamp.h>

#include <cstdio>
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

/// How many filters there are, -1 if one of them lacks something.
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

bool TryFilter(void* module, const std::string& file) {
    auto* const ladspa = Find<decltype(ladspa_descriptor)>(module, "ladspa_descriptor");
    auto* const single = Find<decltype(lv2_descriptor)>(module, "lv2_descriptor");
    auto* const library = Find<decltype(lv2_lib_descriptor)>(module, "lv2_lib_descriptor");
    const bool isBad = ladspa != nullptr && CountFilters(ladspa) < 1;
    const int ofSingle = single == nullptr ? 0 : CountFilters(single);
    const int ofLibrary = library == nullptr ? 0 : CountFiltersOfLibrary(library, file);
    const bool isLv2 = single != nullptr || library != nullptr;
    return (ladspa != nullptr || isLv2) && !isBad && ofSingle >= 0 && ofLibrary >= 0 &&
           (!isLv2 || ofSingle + ofLibrary > 0);
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

/// No module throws but one of ours.
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
