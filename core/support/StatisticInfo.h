#pragma once

#include <map>
#include <string>

namespace Tarnex::Core::Utils {

/// The statistics of a run: named sections of keys and values.
class StatisticInfo {
public:
    using Section = std::map<std::string, std::string>;

    /// The section called `name`; adds an empty one if there is none.
    Section& operator[](const std::string& name) { return sections[name]; }

    /// Adds the sections of `other`, replacing those with the same name.
    void Add(const StatisticInfo& other);

    /// One JSON object on one line; sections and keys in byte order. Bytes that aren't UTF-8 become
    /// U+FFFD.
    explicit operator std::string() const;

private:
    std::map<std::string, Section> sections;
};

}  // namespace Tarnex::Core::Utils
