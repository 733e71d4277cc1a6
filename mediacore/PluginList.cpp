#include "mediacore/PluginList.h"

#include "core/media/AppLocations.h"
#include "core/media/PluginFactories.h"
#include "support/PluginList.h"

namespace Tarnex::Core {

std::vector<std::string> GetPlugins(const std::string& factory) {
    static const Utils::PluginLists& lists = *new Utils::PluginLists(Utils::ReadPluginLists(
        AppLocations::GetLocations().GetApplicationDirectory() / PLUGIN_LIST_FILE));
    const auto found = lists.find(factory);
    return found == lists.end() ? std::vector<std::string>() : found->second;
}

}  // namespace Tarnex::Core
