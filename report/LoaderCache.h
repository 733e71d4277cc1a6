#pragma once

#include <string>
#include <unordered_map>

namespace Tarnex::Reports {

/// Where the dynamic loader finds a library by its name, as its cache has it. A package that is
/// installed rewrites the cache, so a verdict rests only on the names that its libraries have.
class LoaderCache {
public:
    /// Reads it; a file that isn't a cache has no names.
    explicit LoaderCache(const std::string& path = "/etc/ld.so.cache");

    /// The files with this name, links resolved, separated by colons: one, or several where there
    /// are some for newer processors. Empty if there is none.
    const std::string& Resolve(const std::string& name) const;

    /// All names, with paths as the cache has them.
    const std::unordered_map<std::string, std::string>& GetNames() const { return names; }

private:
    std::unordered_map<std::string, std::string> names;
    mutable std::unordered_map<std::string, std::string> resolved;
};

}  // namespace Tarnex::Reports
