#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Tarnex::Platform {

/// The value of an environment variable. An empty value counts as not set.
[[nodiscard]] std::optional<std::string> GetEnvironment(const std::string& name);

/// Sets a variable for this process and for the processes it starts. Don't call this while another
/// thread may read the environment. Returns false if the system refuses the name or the value.
bool SetEnvironment(const std::string& name, const std::string& value);

/// All variables of this process as "NAME=value", except those that begin with one of `beginnings`.
[[nodiscard]] std::vector<std::string> GetEnvironmentWithout(
    const std::vector<std::string>& beginnings);

/// The path of the running program, symbolic links resolved. Throws
/// `boost::filesystem::filesystem_error`.
[[nodiscard]] std::string GetProgramPath();

/// Where programs keep the user's data: as the XDG base directories have it. None for a user
/// without a home.
[[nodiscard]] std::optional<std::string> FindUserDataFolder();

/// Where they keep what is to last from run to run: the same. Throws `std::runtime_error` for a
/// user without a home.
[[nodiscard]] std::string GetUserStateFolder();

}  // namespace Tarnex::Platform
