#pragma once

#include <optional>
#include <string>

namespace Tarnex::Platform {

/// A variable of this process. One that is set to nothing counts as not set.
[[nodiscard]] std::optional<std::string> GetEnvironment(const std::string& name);

/// Sets a variable of this process and of the processes that it starts. Not to be called while
/// another thread may read the environment. False if the system refuses the name or the value.
bool SetEnvironment(const std::string& name, const std::string& value);

/// The file of the running program, symbolic links resolved. Throws
/// `boost::filesystem::filesystem_error`.
[[nodiscard]] std::string GetProgramPath();

}  // namespace Tarnex::Platform
