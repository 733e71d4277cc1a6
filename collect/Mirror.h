#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>

#include "installation/Installation.h"

namespace Tarnex::Collect {

/// The directory of the installation that this one was copied from; none if `Mirror` didn't make
/// it.
std::optional<boost::filesystem::path> GetSource(const Installations::Installation& installation);

/// Makes `copy` an installation of its own: copies of the programs and their libraries, since a
/// module is looked for beside the program's real file, and links to the modules and samples of
/// `source`. Touches only what an earlier call copied or linked, which it writes down; what else
/// lies there and is listed stays, and keeps its name if the source has a file of that name too.
/// True if anything changed. Throws `Tarnex::Exception` or `std::system_error` with the path at
/// fault; the next call completes what was begun.
bool Mirror(const Installations::Installation& source, const Installations::Installation& copy);

/// Copies the programs and their libraries alone into an empty directory. Throws the same.
void CopyPrograms(const Installations::Installation& source,
                  const boost::filesystem::path& directory);

}  // namespace Tarnex::Collect
