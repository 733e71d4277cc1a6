#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Tarnex::Parent {

/// A place in the order of the check; a name that two factories list has two.
struct PluginPlace {
    std::string name;
    std::string factory;
};

/// What plugins.list gives. Throws `Tarnex::Exception`.
std::vector<PluginPlace> ReadPluginOrder(const std::filesystem::path& application);

bool HasModule(const std::filesystem::path& application, const std::string& plugin);

/// The plugins that the media core loads when it starts.
std::vector<std::string> CorePlugins(const std::vector<PluginPlace>& order);

/// Whether Assayer finds a sample file for the codec id.
bool HasSample(const std::filesystem::path& application, const std::string& codecId);

}  // namespace Tarnex::Parent
