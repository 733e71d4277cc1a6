#pragma once

#include <string>
#include <vector>

namespace Tarnex::Core::Utils {

/// Names of plugins that must not be trusted, in the order in which they were added.
class BrokenPlugins {
public:
    BrokenPlugins() = default;
    explicit BrokenPlugins(std::vector<std::string> names);

    /// Parses names separated by commas, as `Add` does.
    explicit BrokenPlugins(const std::string& joined);

    /// Splits `joined` at commas, trims each piece, and appends those that aren't empty.
    void Add(const std::string& joined);

    /// True if there are names.
    explicit operator bool() const { return !names.empty(); }
    operator const std::vector<std::string>&() const { return names; }  // NOLINT

private:
    std::vector<std::string> names;
};

}  // namespace Tarnex::Core::Utils
