#include "core/media/AppLocations.h"

#include <boost/filesystem.hpp>

#include "platform/Environment.h"

namespace Tarnex::Core {
namespace {

class ProgramLocations : public AppLocations {
public:
    ioPath GetApplicationDirectory() const override { return directory; }

private:
    const ioPath directory =
        boost::filesystem::path(Platform::GetProgramPath()).parent_path().string();
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

}  // namespace Tarnex::Core
