#pragma once

#include <memory>
#include <string>
#include <vector>

#include "exercise/Plugin.h"

namespace Tarnex::Exercise {

/// A module and the identifiers of its plugins, of which each is there once.
struct LoadedModule {
    std::unique_ptr<PluginModule> module;
    std::vector<std::string> ids;
};

/// Loads the module by its interface and lists it. Each file is initialised once a
/// process: a second call returns the same, or throws the same text. Throws as `Plugin` does.
LoadedModule& LoadModule(const ModuleRequest& request);

/// The text of the exception that is being handled.
std::string GetReason();

}  // namespace Tarnex::Exercise
