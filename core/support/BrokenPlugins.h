#pragma once

#include <string>
#include <vector>

namespace Tarnex::Core::Utils {

/// Names of plugins that must not be trusted, in the order in which they were entered.
class BrokenPlugins {
public:
    BrokenPlugins() = default;
    explicit BrokenPlugins(std::vector<std::string> names);

    /// From names joined by commas; see `Add`.
    explicit BrokenPlugins(const std::string& joined);

    /// Splits `joined` at commas, trims each piece, drops the empty ones and appends the others.
    void Add(const std::string& joined);

    /// True when there are names.
    explicit operator bool() const { return !names.empty(); }
    operator const std::vector<std::string>&() const { return names; }  // NOLINT

private:
    std::vector<std::string> names;
};

}  // namespace Tarnex::Core::Utils
