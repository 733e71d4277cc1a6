#include "mediacore/PluginList.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/media/AppLocations.h"
#include "core/support/Exception.h"
#include "support/ListFile.h"

namespace Tarnex::Core {
namespace {

constexpr char FILE_NAME[] = "plugins.list";

constexpr std::array FACTORIES = {"EffectFactory", "FilterFactory", "CodecFactory",
                                  "MuxerFactory",  "ParserFactory", "AnalyzerFactory"};

bool IsFactory(const std::string& key) {
    return std::find(FACTORIES.begin(), FACTORIES.end(), key) != FACTORIES.end();
}

}  // namespace

PluginLists ReadPluginLists(const ioPath& path) {
    PluginLists lists = Utils::ReadListFile(path, IsFactory);
    for (const auto& [factory, plugins] : lists) {
        for (const std::string& plugin : plugins) {
            if (plugin.find('/') != std::string::npos) {
                throw Exception(fmt::format("{}: a plugin of {} is named by a path, \"{}\"",
                                            path.utf8string(), factory, plugin));
            }
        }
    }
    return lists;
}

std::vector<std::string> GetPlugins(const std::string& factory) {
    static const PluginLists& lists = *new PluginLists(
        ReadPluginLists(AppLocations::GetLocations().GetApplicationDirectory() / FILE_NAME));
    const auto found = lists.find(factory);
    return found == lists.end() ? std::vector<std::string>() : found->second;
}

}  // namespace Tarnex::Core
