// Loads modules and calls their entry points as the factories do, with nothing around it.
// Usage: bare_loop [FACTORY FILE]...

#include <dlfcn.h>
#include <frei0r.h>
#include <ladspa.h>
#include <vamp/vamp.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

template <class Function>
Function* Find(void* module, const char* name) {
    return reinterpret_cast<Function*>(dlsym(module, name));
}

bool TryEffect(void* module) {
    auto* const initialise = Find<decltype(f0r_init)>(module, "f0r_init");
    auto* const getInfo = Find<decltype(f0r_get_plugin_info)>(module, "f0r_get_plugin_info");
    if (initialise == nullptr || getInfo == nullptr || initialise() < 1) {
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

bool TryFilter(void* module) {
    auto* const describe = Find<decltype(ladspa_descriptor)>(module, "ladspa_descriptor");
    return describe != nullptr && describe(0) != nullptr;
}

bool TryAnalyzer(void* module) {
    auto* const describe =
        Find<decltype(vampGetPluginDescriptor)>(module, "vampGetPluginDescriptor");
    return describe != nullptr && describe(VAMP_API_VERSION, 0) != nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, bool (*)(void*)> trials{{"EffectFactory", TryEffect},
                                                        {"FilterFactory", TryFilter},
                                                        {"AnalyzerFactory", TryAnalyzer}};
    int loaded = 0;
    for (int i = 1; i + 1 < argc; i += 2) {
        void* const module = dlopen(argv[i + 1], RTLD_NOW | RTLD_LOCAL);
        loaded += module != nullptr && trials.at(argv[i])(module) ? 1 : 0;
    }
    std::printf("%d\n", loaded);
    return 0;
}
