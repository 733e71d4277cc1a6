#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "collect/ModuleKinds.h"

namespace Tarnex::Collect {

/// Device and inode, which all names of a file share.
using FileId = std::pair<std::uint64_t, std::uint64_t>;

/// What can be known of a module's file without loading it.
struct ModuleFile {
    FileId id;
    std::vector<const ModuleKind*> kinds;  ///< kinds whose entry points it exports, in table order
};

/// Reads the file's ELF header and dynamic symbols. Throws `Tarnex::Exception` with the reason,
/// without the path, if it isn't a shared object for this kind of machine.
ModuleFile ReadModuleFile(const boost::filesystem::path& path);

/// The number by which the linker tells builds apart, in hexadecimal digits; empty for a file
/// without one, and for whatever isn't an ELF file that can be read.
std::string ReadBuildId(const boost::filesystem::path& path);

}  // namespace Tarnex::Collect
