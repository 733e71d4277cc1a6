#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>
#include <set>
#include <string>

namespace Tarnex::Collect {

/// What a copy of an installation knows of itself, in a file in it: the source's path and, a line
/// each, the names of what was copied and linked. Version 1.1 wrote the path alone.
struct MirrorRecord {
    boost::filesystem::path source;
    std::optional<std::set<std::string>> names;  ///< relative paths; none in a file of version 1.1
};

/// None if `directory` isn't a copy.
std::optional<MirrorRecord> ReadMirrorRecord(const boost::filesystem::path& directory);

/// True if it wasn't the same already. Throws `std::system_error` with the path and the reason.
bool WriteMirrorRecord(const boost::filesystem::path& directory, const MirrorRecord& record);

}  // namespace Tarnex::Collect
