#pragma once

#include <filesystem>

namespace Tarnex::Assay {

/// Where this command lies, links resolved: a complete installation.
std::filesystem::path GetCommandFolder();

/// The user's own installation, whether it is there or not. These two throw `Tarnex::Exception` for
/// a user without a home.
std::filesystem::path GetOwnInstallation();

/// Where a check leaves its report.
std::filesystem::path GetStateFolder();

}  // namespace Tarnex::Assay
