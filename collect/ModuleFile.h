#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "collect/ModuleKinds.h"

namespace Tarnex::Collect {

/// Device and inode: the same for all names of one file.
using FileId = std::pair<std::uint64_t, std::uint64_t>;

/// What a file says of itself without being loaded.
struct ModuleFile {
    FileId id;
    std::vector<const ModuleKind*> kinds;  ///< whose entry points it exports, in table order
};

/// Reads the file's ELF header and dynamic symbols. Throws `Tarnex::Exception` with the reason,
/// without the path, if it isn't a shared object that a program like this one could load.
ModuleFile ReadModuleFile(const boost::filesystem::path& path);

/// The number by which the linker tells builds apart, in hexadecimal digits; empty for a file
/// without one, and for whatever isn't an ELF file that can be read.
std::string ReadBuildId(const boost::filesystem::path& path);

}  // namespace Tarnex::Collect
