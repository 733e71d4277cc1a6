#include "core/media/Property.h"

#include <algorithm>
#include <utility>

namespace Tarnex::Proc {

Property::Property(std::string name, std::string value)
    : name(std::move(name)), value(std::move(value)) {}

Property Property::GetRootItem() {
    return Property();
}

Property Property::MakeStatistics(const std::string& name, std::chrono::nanoseconds time,
                                  std::uint64_t count) {
    Property statistics(name);
    statistics.Add(Property("time", std::to_string(time.count())));
    statistics.Add(Property("count", std::to_string(count)));
    return statistics;
}

void Property::Add(Property item) {
    items.push_back(std::move(item));
}

std::string Property::Get(const std::string& itemName) const {
    const auto found = std::find_if(items.begin(), items.end(), [&](const Property& item) {
        return item.GetName() == itemName;
    });
    return found == items.end() ? std::string() : found->GetValue();
}

}  // namespace Tarnex::Proc
