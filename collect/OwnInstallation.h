#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

namespace Tarnex::Collect {

/// The user's own installation, whether it is there or not. Throws `std::runtime_error` for a user
/// without a home.
boost::filesystem::path GetOwnInstallation();

/// What is to be checked, and a text that says why that.
struct Chosen {
    boost::filesystem::path directory;
    std::string reason;
};

/// `app` if given, else the user's own installation if it was copied from this program's folder,
/// else that folder. Renews the user's own if what it was copied from has changed. Throws a
/// `std::exception` with the path at fault.
Chosen ChooseInstallation(const std::string& app);

/// Makes `directory` an installation like this program's folder, if it is empty, not there or was
/// made so before; any other installation stays as it is. True if anything changed. Throws the
/// same.
bool MakeInstallation(const boost::filesystem::path& directory);

}  // namespace Tarnex::Collect
