#include "core/media/AppLocations.h"

#include <sys/stat.h>

#include <boost/filesystem.hpp>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>

#include "core/support/Mutex.h"
#include "platform/Environment.h"

namespace Tarnex::Core {
namespace {

namespace fs = boost::filesystem;

constexpr int MAX_LINKS = 40;  // as many as Linux follows in one path

class ProgramLocations : public AppLocations {
public:
    ioPath GetApplicationDirectory() const override { return directory; }

private:
    const ioPath directory = fs::path(Platform::GetProgramPath()).parent_path().string();
};

/// Only the links of the file itself: to look at each folder above it as well would take longer
/// than all else that is done for a module beside its load.
ioPath FollowLinks(fs::path file) {
    boost::system::error_code noLink;
    for (int i = 0; i < MAX_LINKS; ++i) {
        const fs::path target = fs::read_symlink(file, noLink);
        if (noLink) {
            break;
        }
        file = fs::absolute(target, file.parent_path());
    }
    return file.string();
}

using FileId = std::pair<dev_t, ino_t>;

/// Nothing if there is no such file.
std::optional<FileId> GetFileId(const ioPath& path) {
    struct stat file {};
    if (stat(path.utf8string().c_str(), &file) != 0) {
        return std::nullopt;
    }
    return FileId(file.st_dev, file.st_ino);
}

/// Never freed: the watch-dog may end the process while a module is being loaded.
struct KnownFiles {
    Mutex mutex;
    std::unordered_map<std::string, ioPath> byPlugin TARNEX_GUARDED_BY(mutex);
    std::map<FileId, ioPath> firstPaths TARNEX_GUARDED_BY(mutex);
};

}  // namespace

const AppLocations& AppLocations::GetLocations() {
    static const AppLocations& locations = *new ProgramLocations();
    return locations;
}

ioPath GetPlatformModuleName(const ioPath& plugin) {
    return plugin.utf8string() + MODULE_EXTENSION;
}

ioPath FindModuleFile(const std::string& plugin) {
    static KnownFiles& known = *new KnownFiles();
    const Lock lock(known.mutex);
    const auto [entry, isNew] = known.byPlugin.try_emplace(plugin);
    if (isNew) {
        const ioPath directory = AppLocations::GetLocations().GetApplicationDirectory();
        const ioPath path = FollowLinks((directory / GetPlatformModuleName(plugin)).utf8string());
        const auto id = GetFileId(path);
        entry->second = id ? known.firstPaths.try_emplace(*id, path).first->second : path;
    }
    return entry->second;
}

}  // namespace Tarnex::Core
