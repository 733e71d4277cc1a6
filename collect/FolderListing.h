#pragma once

#include <boost/filesystem/path.hpp>
#include <vector>

#include "collect/ReadingCache.h"

namespace Tarnex::Collect {

struct FolderEntry {
    boost::filesystem::path path;
    bool isFolder;  ///< or a link to one
    bool isLink;
};

/// The folders in a folder, and the files that have a module's name, sorted by path. Throws
/// `Tarnex::Exception` with the reason, without the path, if it can't be read.
std::vector<FolderEntry> ListFolder(const boost::filesystem::path& folder, ReadingCache& cache);

}  // namespace Tarnex::Collect
