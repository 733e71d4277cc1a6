#include "exercise/lv2/Bundle.h"

#include <lv2/core/lv2.h>

#include <filesystem>
#include <map>
#include <set>

#include "exercise/Records.h"

namespace Tarnex::Exercise {
namespace {

struct FreeNodes {
    void operator()(LilvNodes* nodes) const { lilv_nodes_free(nodes); }
};

std::string ToPath(const LilvNode* file) {
    char* path = file == nullptr ? nullptr : lilv_node_get_path(file, nullptr);
    std::string text = path == nullptr ? "" : path;
    lilv_free(path);
    return text;
}

}  // namespace

const Bundle& Bundle::Open(const std::string& folder) {
    static auto& bundles = *new std::map<std::string, const Bundle*>();
    const auto known = bundles.find(folder);
    return known != bundles.end() ? *known->second
                                  : *bundles.emplace(folder, new Bundle(folder)).first->second;
}

Bundle::Bundle(const std::string& folder)
    : folder(folder.ends_with('/') ? folder : folder + "/"), world(lilv_world_new()) {
    if (!std::filesystem::exists(this->folder + "manifest.ttl")) {
        throw Failure("the bundle \"" + folder + "\" has no manifest.ttl");
    }
    const Node uri(lilv_new_file_uri(world, nullptr, this->folder.c_str()));
    lilv_world_load_bundle(world, uri.get());
}

std::vector<const LilvPlugin*> Bundle::GetPlugins() const {
    std::vector<const LilvPlugin*> found;
    const LilvPlugins* plugins = lilv_world_get_all_plugins(world);
    LILV_FOREACH(plugins, i, plugins) {
        found.push_back(lilv_plugins_get(plugins, i));
    }
    return found;
}

std::string Bundle::GetBinary(const LilvPlugin* plugin) const {
    // The manifest usually says it. Asking for the library would read all the plugin's data.
    const Node binary = MakeUri(LV2_CORE__binary);
    const std::unique_ptr<LilvNodes, FreeNodes> named(
        lilv_world_find_nodes(world, lilv_plugin_get_uri(plugin), binary.get(), nullptr));
    return ToPath(named ? lilv_nodes_get_first(named.get()) : lilv_plugin_get_library_uri(plugin));
}

std::vector<std::string> FindLv2Binaries(const std::string& folder) {
    const Bundle& bundle = Bundle::Open(folder);
    std::set<std::string> binaries;
    for (const LilvPlugin* plugin : bundle.GetPlugins()) {
        if (const std::string binary = bundle.GetBinary(plugin); !binary.empty()) {
            binaries.insert(binary);
        }
    }
    return {binaries.begin(), binaries.end()};
}

}  // namespace Tarnex::Exercise
