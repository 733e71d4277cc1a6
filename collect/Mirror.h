#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>

namespace Tarnex::Collect {

/// The installation that `directory` was copied from; none if `Mirror` didn't make it.
std::optional<boost::filesystem::path> GetSource(const boost::filesystem::path& directory);

/// Makes `directory` an installation of its own: copies of the program and its libraries, since a
/// module is looked for beside the program's real file, and links to the modules and samples of
/// `source`. What else lies there and is listed stays, such as links to this machine's modules.
/// True if anything changed. Throws `Tarnex::Exception` or `std::system_error` with the path at
/// fault; the next call completes what was begun.
bool Mirror(const boost::filesystem::path& source, const boost::filesystem::path& directory);

}  // namespace Tarnex::Collect
