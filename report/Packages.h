#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "parent/Item.h"

namespace Tarnex::Reports {

/// By path, the Debian package that owns the file, with its version ("amp-plugins 1.0-1"). Files of
/// no package are left out, as is everything where there is no dpkg. Starts two processes.
std::map<std::string, std::string> FindPackages(const std::set<std::string>& paths);

/// Sets the package of each bad item that was really checked.
void AddPackages(std::vector<Parent::Item>& items);

}  // namespace Tarnex::Reports
