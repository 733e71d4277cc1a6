#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Tarnex::Platform {

/// A variable of this process. One that is set to nothing counts as not set.
std::optional<std::wstring> GetEnvironment(const std::wstring& name);

/// Sets a variable of this process and of the processes that it starts. Not to be called while
/// another thread may read the environment. False if the system refuses the name or the value.
bool SetEnvironment(const std::wstring& name, const std::wstring& value);

/// All variables of this process, as "NAME=value", but those that begin so.
std::vector<std::string> GetEnvironmentWithout(const std::vector<std::string>& beginnings);

/// The file of the running program, symbolic links resolved. Throws `std::system_error`.
std::wstring GetProgramPath();

}  // namespace Tarnex::Platform
