#include "core/media/AppLocations.h"

#include <boost/filesystem.hpp>
#include <unordered_map>

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

/// Never freed: the watch-dog may end the process while a module is being loaded.
struct KnownFiles {
    Mutex mutex;
    std::unordered_map<std::string, ioPath> files TARNEX_GUARDED_BY(mutex);  // by plugin
};

}  // namespace

const AppLocations& AppLocations::GetLocations() {
    static const AppLocations& locations = *new ProgramLocations();
    return locations;
}

ioPath GetPlatformModuleName(const ioPath& plugin) {
#if defined(_WIN32)
    return plugin.utf8string() + ".dll";
#else
    return plugin.utf8string() + ".so";
#endif
}

ioPath FindModuleFile(const std::string& plugin) {
    static KnownFiles& known = *new KnownFiles();
    const Lock lock(known.mutex);
    const auto [entry, isNew] = known.files.try_emplace(plugin);
    if (isNew) {
        const ioPath directory = AppLocations::GetLocations().GetApplicationDirectory();
        entry->second = FollowLinks((directory / GetPlatformModuleName(plugin)).utf8string());
    }
    return entry->second;
}

}  // namespace Tarnex::Core
