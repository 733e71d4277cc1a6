#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "installation/Interface.h"

namespace Tarnex::Installations {

/// Device and inode, which all names of a file share.
using FileId = std::pair<std::uint64_t, std::uint64_t>;

/// What can be known of a module's file without loading it.
struct ModuleFile {
    FileId id;
    std::vector<Interface> interfaces;  ///< whose entry points it exports, in their order
    bool isUserInterface = false;       ///< of an LV2 plugin
};

/// Reads the file's ELF header and dynamic symbols. Throws `Tarnex::Exception` with the reason,
/// without the path, if it isn't a shared object for this kind of machine.
ModuleFile ReadModuleFile(const boost::filesystem::path& path);

/// The linker's build id in hexadecimal digits, which differs from build to build. Empty if the
/// file has none, can't be read or isn't an ELF file.
std::string ReadBuildId(const boost::filesystem::path& path);

}  // namespace Tarnex::Installations
