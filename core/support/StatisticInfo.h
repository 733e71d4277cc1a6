#pragma once

#include <map>
#include <string>

namespace Tarnex::Core::Utils {

/// The record that sums up a run: named sections of key and value.
class StatisticInfo {
public:
    using Section = std::map<std::string, std::string>;

    /// The section of that name, made empty if it isn't there.
    Section& operator[](const std::string& name) { return sections[name]; }

    /// Takes over the sections of `other`; one of the same name is replaced.
    void Add(const StatisticInfo& other);

    /// One JSON object on one line, sections and keys in byte order. Bytes that aren't UTF-8 become
    /// U+FFFD.
    explicit operator std::string() const;

private:
    std::map<std::string, Section> sections;
};

}  // namespace Tarnex::Core::Utils
