#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "exercise/Request.h"

namespace Tarnex::Exercise {

/// One plugin of a module. All calls throw `Failure` or `Unavailable`, or what left the plugin.
class Plugin {
public:
    virtual ~Plugin() = default;

    /// Its name for people.
    virtual std::string GetTitle() const = 0;

    /// Creates it, lets it work and closes it. Whatever it throws, the instance is left as it is:
    /// nothing is known of it any more.
    virtual void Exercise(Depth depth) = 0;
};

/// A loaded module.
class PluginModule {
public:
    virtual ~PluginModule() = default;

    /// The identifiers of its plugins, in its own order. One may come again.
    virtual std::vector<std::string> List() = 0;

    /// The plugin at that place of the list. It isn't created yet.
    virtual std::unique_ptr<Plugin> Open(std::size_t index) = 0;
};

// The interfaces, one folder or file each. The module's file is opened, nothing in it is created.
std::unique_ptr<PluginModule> LoadLadspa(const ModuleRequest& module);
std::unique_ptr<PluginModule> LoadLv2(const ModuleRequest& module);
std::unique_ptr<PluginModule> LoadClap(const ModuleRequest& module);
std::unique_ptr<PluginModule> LoadVst3(const ModuleRequest& module);
std::unique_ptr<PluginModule> LoadVamp(const ModuleRequest& module);
std::unique_ptr<PluginModule> LoadFrei0r(const ModuleRequest& module);

}  // namespace Tarnex::Exercise
