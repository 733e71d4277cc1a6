#pragma once

#include <string>
#include <unordered_set>
#include <vector>

namespace Tarnex::Core::Utils {

/// The plugin phase: loads each of the media core's plugins into this process, one by one, and
/// keeps the names of those that fail. Use it once: construct it, set its inputs, call `Check`,
/// read the results. Thread-bound.
class PluginChecker {
public:
    /// Plugins to report as broken without loading them.
    void SetKnownBrokenPlugins(const std::vector<std::string>& plugins);

    /// Makes `Check` begin after the first plugin of this name. If no factory lists the name,
    /// `Check` checks nothing.
    void SetLastFailedLoadPlugin(const std::string& plugin);

    /// Loads the plugins. Logs each name before its load and each finding at once, as records. What
    /// a load throws is a finding. Any other exception (a factory can't list its plugins) is passed
    /// on.
    void Check();

    /// The broken plugins in the order of their failures, without those whose failure is tolerated.
    std::vector<std::string> GetBrokenPlugins() const { return brokenPlugins; }

    /// All failure texts, one after the other.
    std::string GetErrorInfo() const { return errorInfo; }

    /// All failed plugins, including those whose failure is tolerated, in the order of their
    /// failures.
    std::vector<std::string> GetFailedPlugins() const { return failedPlugins; }

    /// The failed plugins whose failure is tolerated.
    std::vector<std::string> GetWhiteBrokenPlugins() const { return whiteBrokenPlugins; }

    /// The names of all plugins, even of those that this run doesn't check.
    std::vector<std::string> GetAllPlugins() const;

private:
    struct PluginRecord {
        std::string name;
        std::string factory;
    };

    static std::vector<PluginRecord> CollectPlugins();
    std::vector<PluginRecord> SelectPluginsToCheck() const;
    void CheckPlugin(const PluginRecord& record);
    void RecordFailure(const std::string& name, const std::string& text);
    void SeparateWhitePlugins();

    std::vector<std::string> failedPlugins;
    std::vector<std::string> brokenPlugins;
    std::vector<std::string> whiteBrokenPlugins;
    std::unordered_set<std::string> knownBrokenPlugins;
    std::string lastFailedLoadPlugin;
    std::string errorInfo;
};

}  // namespace Tarnex::Core::Utils
