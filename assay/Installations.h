#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

namespace Tarnex::Assay {

/// The user's own installation, whether it is there or not. These two throw `Tarnex::Exception` for
/// a user without a home.
boost::filesystem::path GetOwnInstallation();

/// Where a check leaves its report.
boost::filesystem::path GetStateFolder();

/// What is to be checked, and a text that says why that.
struct Chosen {
    boost::filesystem::path directory;
    std::string reason;
};

/// `app` if given, else the user's own installation if it was copied from this command's folder,
/// else that folder. Renews the user's own if what it was copied from has changed. Throws
/// `Tarnex::Exception` or `boost::filesystem::filesystem_error`.
Chosen ChooseInstallation(const std::string& app);

/// Makes `directory` an installation like this command's folder, if it is empty, not there or was
/// made so before; any other installation stays as it is. True if anything changed. Throws the
/// same.
bool MakeInstallation(const boost::filesystem::path& directory);

}  // namespace Tarnex::Assay
