#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "core/Export.h"

namespace Tarnex::Proc {

/// A tree of named values, such as a coder's settings or a stream's statistics.
class TARNEX_API Property {
public:
    explicit Property(std::string name = {}, std::string value = {});

    /// An unnamed property that holds others.
    static Property GetRootItem();

    /// A property called `name` with the items "time" (in nanoseconds) and "count".
    static Property MakeStatistics(const std::string& name, std::chrono::nanoseconds time,
                                   std::uint64_t count);

    void Add(Property item);

    const std::string& GetName() const { return name; }
    const std::string& GetValue() const { return value; }
    const std::vector<Property>& GetItems() const { return items; }

    /// The value of the first item called `itemName`; empty if there is none.
    std::string Get(const std::string& itemName) const;

private:
    std::string name;
    std::string value;
    std::vector<Property> items;
};

}  // namespace Tarnex::Proc
