#pragma once

#include <sys/types.h>

#include <set>
#include <string>

namespace Tarnex::Platform {

/// The files that the process has mapped now, links resolved, without devices. Empty if they can't
/// be read: the process has ended, or belongs to somebody else.
std::set<std::string> ListMappedFiles(pid_t process);

}  // namespace Tarnex::Platform
