#pragma once

#include <array>
#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Tarnex::Collect {

using Texts = std::vector<std::string>;

/// What changes with a file or a folder: device, inode, size, and the times of content and status
/// in nanoseconds.
using Stamp = std::array<std::uint64_t, 5>;

/// What was read of a path, or why it couldn't be.
struct Reading {
    Stamp stamp{};
    Texts texts{};
    std::string problem{};  ///< empty if it was read
};

/// Remembers from call to call what was read of files and folders, in a file. Nothing is read again
/// whose stamp is as it was.
class ReadingCache {
public:
    /// A file that isn't there, is damaged or of another version counts as empty.
    explicit ReadingCache(const boost::filesystem::path& file);

    /// What `read` gives for the path, now or earlier. A `Tarnex::Exception` of `read` becomes the
    /// problem. `what` tells readings of different kinds apart. Throws `Tarnex::Exception` with the
    /// reason, without the path, if there is no such file. The reference holds as long as the
    /// cache.
    const Reading& Get(char what, const boost::filesystem::path& path,
                       const std::function<Texts()>& read);

    /// Writes the file if anything in it changed, without what is known of paths that are gone. A
    /// failure is no loss, and not told.
    void Save();

private:
    struct Entry : Reading {
        bool isFresh = false;   ///< looked up since the cache was made
        bool isSettled = true;  ///< whether the stamp shows a later change
    };

    void Load(const std::string& bytes);
    void DropGone();

    boost::filesystem::path file;
    std::unordered_map<std::string, Entry> entries;  // by what was read, and the path
    bool changed = false;
};

}  // namespace Tarnex::Collect
