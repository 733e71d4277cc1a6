#include "platform/TemporaryFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <deque>
#include <string>
#include <system_error>

namespace Tarnex::Platform {
namespace {

namespace fs = std::filesystem;

fs::path MakeFolder() {
    std::error_code ignored;
    for (const fs::path& parent : {fs::absolute(fs::temp_directory_path(ignored), ignored),
                                   fs::path("/tmp"), fs::path("/var/tmp")}) {
        std::string path = (parent / "assay-XXXXXX").native();
        if (parent.is_absolute() && mkdtemp(path.data()) != nullptr) {
            return path;
        }
    }
    throw std::system_error(errno, std::generic_category(), "can't make a folder in /tmp");
}

/// Where the folder is now; empty if it has gone.
fs::path FindFolder(int descriptor) {
    std::error_code ignored;
    const fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(descriptor), ignored);
    struct stat named {};
    struct stat open {};
    const bool isThere = lstat(path.c_str(), &named) == 0 && fstat(descriptor, &open) == 0 &&
                         named.st_dev == open.st_dev && named.st_ino == open.st_ino;
    return isThere ? path : fs::path();
}

bool IsFolder(const fs::path& path) {
    std::error_code ignored;
    return fs::symlink_status(path, ignored).type() == fs::file_type::directory;
}

/// Gives the folder's new path.
fs::path Move(const fs::path& folder, const fs::path& into, std::size_t number) {
    chmod(folder.c_str(), S_IRWXU);
    fs::path moved = into / std::to_string(number);
    return rename(folder.c_str(), moved.c_str()) == 0 ? moved : folder;
}

/// Removes the files of a folder, and moves its folders to where no path grows with the depth.
void Flatten(const fs::path& folder, const fs::path& into, std::deque<fs::path>& folders) {
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored), end; entry != end;
         entry.increment(ignored)) {
        if (IsFolder(entry->path())) {
            folders.push_back(Move(entry->path(), into, folders.size()));
        } else {
            unlink(entry->path().c_str());
        }
    }
}

/// The folders in it go through a new one beside `place`.
void RemoveAll(const fs::path& path, const fs::path& place) {
    if (!IsFolder(path)) {
        unlink(path.c_str());  // A link that took its place is not followed.
        return;
    }
    std::string into = place.native() + "-XXXXXX";
    if (mkdtemp(into.data()) == nullptr) {
        return;
    }
    std::deque<fs::path> folders{Move(path, into, 0)};
    for (std::size_t i = 0; i < folders.size(); ++i) {
        Flatten(folders[i], into, folders);
    }
    for (const fs::path& folder : folders) {
        rmdir(folder.c_str());
    }
    rmdir(into.c_str());
}

}  // namespace

TemporaryFolder::TemporaryFolder()
    : path(MakeFolder()), folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}

void TemporaryFolder::Remove(int descriptor) const {
    RemoveAll(path, path);
    if (const fs::path moved = FindFolder(descriptor); !moved.empty()) {
        RemoveAll(moved, path);
    }
}

}  // namespace Tarnex::Platform
