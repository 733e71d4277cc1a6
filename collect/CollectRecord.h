#pragma once

#include <boost/filesystem/path.hpp>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "installation/Installation.h"

namespace Tarnex::Collect {

/// What collecting keeps in an installation, in a file of its own.
struct CollectRecord {
    std::set<boost::filesystem::path> folders;             ///< searched beside the usual ones
    std::map<std::string, boost::filesystem::path> links;  ///< made for modules: targets by plugin

    bool operator==(const CollectRecord&) const = default;
};

/// None if there is no such file, as after collecting with version 1.1, or if it is damaged.
std::optional<CollectRecord> ReadCollectRecord(const Installations::Installation& installation);

/// Throws `std::system_error` with the path and the reason.
void WriteCollectRecord(const Installations::Installation& installation,
                        const CollectRecord& record);

}  // namespace Tarnex::Collect
