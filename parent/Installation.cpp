#include "parent/Installation.h"

#include <algorithm>
#include <array>

#include "core/support/Exception.h"
#include "parent/Check.h"
#include "support/PluginList.h"

namespace Tarnex::Parent {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view OGL_MANAGER = "OglManager";
constexpr std::array<std::string_view, 6> FACTORIES = {"EffectFactory", "FilterFactory",
                                                       "CodecFactory",  "MuxerFactory",
                                                       "ParserFactory", "AnalyzerFactory"};
constexpr std::array<std::string_view, 3> CORE_FACTORIES = {"CodecFactory", "MuxerFactory",
                                                            "ParserFactory"};

template <class Range, class Value>
bool Contains(const Range& range, const Value& value) {
    return std::find(range.begin(), range.end(), value) != range.end();
}

fs::path ModulePath(const fs::path& application, const std::string& plugin) {
    return application / (plugin + ".so");
}

}  // namespace

std::vector<PluginPlace> ReadPluginOrder(const fs::path& application) {
    const auto lists = Core::Utils::ReadPluginLists((application / "plugins.list").native());
    std::vector<PluginPlace> order{{std::string(OGL_MANAGER), std::string(OGL_MANAGER)}};
    for (const std::string_view factory : FACTORIES) {
        if (const auto list = lists.find(std::string(factory)); list != lists.end()) {
            for (const std::string& name : list->second) {
                order.push_back({name, list->first});
            }
        }
    }
    return order;
}

bool HasModule(const fs::path& application, const std::string& plugin) {
    std::error_code ignored;
    return fs::exists(ModulePath(application, plugin), ignored);
}

std::vector<std::string> CorePlugins(const std::vector<PluginPlace>& order) {
    std::vector<std::string> names;
    for (const auto& [name, factory] : order) {
        if (Contains(CORE_FACTORIES, factory) && !Contains(names, name)) {
            names.push_back(name);
        }
    }
    return names;
}

/// The whole path counts, as it does there.
bool HasSample(const fs::path& application, const std::string& codecId) {
    std::error_code ignored;
    const fs::path folder = fs::canonical(application, ignored) / "resources" / "codecSamples";
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        if (entry.path().native().find(codecId) != std::string::npos) {
            return true;
        }
    }
    return false;
}

std::vector<Item> ListPlugins(const fs::path& application) {
    std::vector<Item> items;
    for (const auto& [name, factory] : ReadPluginOrder(application)) {
        if (std::any_of(items.begin(), items.end(),
                        [&](const Item& item) { return item.name == name; })) {
            continue;
        }
        Item item;
        item.name = name;
        item.factory = factory;
        std::error_code error;
        const fs::path file = fs::canonical(ModulePath(application, name), error);
        if (error) {
            item.verdict = Verdict::Missing;
        } else {
            item.file = FileFacts{file.native(), 0, {}, {}};
        }
        items.push_back(std::move(item));
    }
    return items;
}

}  // namespace Tarnex::Parent
