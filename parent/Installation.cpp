#include "parent/Installation.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <set>

#include "core/media/PluginFactories.h"
#include "parent/Check.h"
#include "support/PluginList.h"

namespace Tarnex::Parent {
namespace {

namespace fs = boost::filesystem;

fs::path ModulePath(const fs::path& application, const std::string& plugin) {
    return application / (plugin + ".so");
}

}  // namespace

std::vector<PluginPlace> ReadPluginOrder(const fs::path& application) {
    auto lists = Core::Utils::ReadPluginLists((application / Core::PLUGIN_LIST_FILE).native());
    std::vector<PluginPlace> order{{Core::OGL_MANAGER, Core::OGL_MANAGER}};
    for (const char* factory : Core::PLUGIN_FACTORIES) {
        for (const std::string& name : lists[factory]) {
            order.push_back({name, factory});
        }
    }
    return order;
}

bool HasModule(const fs::path& application, const std::string& plugin) {
    boost::system::error_code ignored;
    return fs::exists(ModulePath(application, plugin), ignored);
}

/// The whole path counts, as it does there.
bool HasSample(const fs::path& application, const std::string& codecId) {
    boost::system::error_code ignored;
    const fs::path folder = fs::canonical(application, ignored) / "resources" / "codecSamples";
    const fs::directory_iterator samples(folder, ignored);
    return std::any_of(begin(samples), end(samples), [&](const fs::directory_entry& entry) {
        return entry.path().native().find(codecId) != std::string::npos;
    });
}

std::vector<Item> ListPlugins(const fs::path& application) {
    std::vector<Item> items;
    std::set<std::string> known;
    for (const auto& [name, factory] : ReadPluginOrder(application)) {
        if (!known.insert(name).second) {
            continue;
        }
        boost::system::error_code error;
        const fs::path file = fs::canonical(ModulePath(application, name), error);
        Item& item = items.emplace_back();
        item.name = name;
        item.factory = factory;
        item.verdict = error ? Verdict::Missing : Verdict::NotReached;
        item.file = error ? std::nullopt : std::optional(FileFacts{file.native(), 0, {}, {}});
    }
    return items;
}

}  // namespace Tarnex::Parent
