#pragma once

#include <string>
#include <vector>

namespace Tarnex::Core::Utils {

/// The plugin phase: loads every plugin of the media core into this process, one by one, and keeps
/// the names of those that fail. Used once: built, given its inputs, run by `Check`, read.
/// Thread-bound.
class PluginChecker {
public:
    /// Plugins that are reported as broken without being loaded.
    void SetKnownBrokenPlugins(const std::vector<std::string>& plugins);

    /// The walk begins behind the first plugin of this name; with a name that no factory lists,
    /// nothing is walked.
    void SetLastFailedLoadPlugin(const std::string& plugin);

    /// Loads what is to be checked and writes each finding as a tagged line when it is made, each
    /// name before its load. What a load throws is a finding; what anything else throws (a factory
    /// that can't list its plugins) passes through.
    void Check();

    /// The plugins that count as broken, in the order of their failures.
    std::vector<std::string> GetBrokenPlugins() const { return brokenPlugins; }

    /// The failure texts, one behind the other.
    std::string GetErrorInfo() const { return errorInfo; }

    /// All plugins that failed, the tolerated ones included, in the order of their failures.
    std::vector<std::string> GetFailedPlugins() const { return failedPlugins; }

    /// The plugins whose failure is tolerated.
    std::vector<std::string> GetWhiteBrokenPlugins() const { return whiteBrokenPlugins; }

    /// The names of all plugins, whether or not they are checked in this run.
    std::vector<std::string> GetAllPlugins() const;

private:
    struct PluginRecord {
        std::string name;
        std::string factory;
    };

    static std::vector<PluginRecord> CollectPlugins();
    std::vector<PluginRecord> SelectPluginsToCheck() const;
    void CheckPlugin(const PluginRecord& record);
    bool IsKnownBroken(const std::string& name) const;
    void RecordFailure(const std::string& name, const std::string& text);
    void SeparateWhitePlugins();

    std::vector<std::string> failedPlugins;
    std::vector<std::string> brokenPlugins;
    std::vector<std::string> whiteBrokenPlugins;
    std::vector<std::string> knownBrokenPlugins;
    std::string lastFailedLoadPlugin;
    std::string errorInfo;
};

}  // namespace Tarnex::Core::Utils
