#include "core/support/StatisticInfo.h"

#include <nlohmann/json.hpp>

namespace Tarnex::Core::Utils {

void StatisticInfo::Add(const StatisticInfo& other) {
    for (const auto& [name, section] : other.sections) {
        sections[name] = section;
    }
}

StatisticInfo::operator std::string() const {
    using Json = nlohmann::json;
    return Json(sections).dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace Tarnex::Core::Utils
