#include "exercise/Modules.h"

#include <fmt/format.h>

#include <map>
#include <typeinfo>

#include "exercise/Records.h"

namespace Tarnex::Exercise {
namespace {

using Load = std::unique_ptr<PluginModule> (*)(const ModuleRequest&);

struct Entry {
    LoadedModule loaded;
    std::string failure;
};

const std::map<std::string, Load> LOADS{
    {"LADSPA", LoadLadspa}, {"LV2", LoadLv2},   {"CLAP", LoadClap},
    {"VST3", LoadVst3},     {"Vamp", LoadVamp}, {"frei0r", LoadFrei0r},
};

/// The second one that is called "gain" becomes "gain#2".
std::vector<std::string> MakeUnique(const std::vector<std::string>& ids) {
    std::map<std::string, int> counts;
    std::vector<std::string> unique;
    for (const std::string& id : ids) {
        const int count = ++counts[id];
        unique.push_back(count == 1 ? id : fmt::format("{}#{}", id, count));
    }
    return unique;
}

}  // namespace

LoadedModule& LoadModule(const ModuleRequest& request) {
    static auto& entries = *new std::map<std::string, Entry>();
    const auto [entry, isNew] = entries.try_emplace(request.path);
    auto& [loaded, failure] = entry->second;
    if (isNew) {
        try {
            loaded.module = LOADS.at(request.interface)(request);
            loaded.ids = MakeUnique(loaded.module->List());
        } catch (...) {
            failure = GetReason();
        }
    }
    if (!failure.empty()) {
        throw Failure(failure);
    }
    return loaded;
}

std::string GetReason() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure.what();
    } catch (const Unavailable& unavailable) {
        return unavailable.what();
    } catch (const std::exception& error) {
        return fmt::format("an exception leaves the plugin: {}: {}: {}", typeid(error).name(),
                           error.what(), GetLastStep());
    } catch (...) {
        return "an exception leaves the plugin: " + GetLastStep();
    }
}

}  // namespace Tarnex::Exercise
