#include "exercise/Listing.h"

#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "core/exercise/Tags.h"
#include "exercise/Modules.h"
#include "reporting/Logging.h"

namespace Tarnex::Exercise {
namespace {

using Json = nlohmann::json;

Json ListPlugins(const ModuleRequest& module) {
    Json plugins = Json::array();
    for (const std::string& id : LoadModule(module).ids) {
        plugins.push_back({{"id", id}, {"interface", module.interface}});
    }
    return plugins;
}

bool IsFile(const std::string& path) {
    return !path.starts_with("/dev/") && access(path.c_str(), F_OK) == 0;
}

/// The kernel resolved their links.
std::set<std::string> ListMappedFiles() {
    std::ifstream maps("/proc/self/maps");
    std::set<std::string> files;
    for (std::string line; std::getline(maps, line);) {
        const std::size_t at = line.find('/');
        if (at != std::string::npos && IsFile(line.substr(at))) {
            files.insert(line.substr(at));
        }
    }
    return files;
}

}  // namespace

std::string ListModules(const Request& request) {
    Json listing{{"modules", Json::object()}, {"failed", Json::object()}};
    for (const ModuleRequest& module : request.modules) {
        Core::Utils::LogTagged(LIST_MODULE_TAG, module.name);
        try {
            listing["modules"][module.name] = ListPlugins(module);
        } catch (...) {
            listing["modules"].erase(module.name);
            listing["failed"][module.name] = GetReason();
        }
    }
    Core::Utils::LogTagged(LISTED_MODULES_TAG, "true");
    listing["files"] = ListMappedFiles();
    return listing.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace Tarnex::Exercise
