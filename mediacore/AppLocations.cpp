#include "core/media/AppLocations.h"

#include <filesystem>

#include "platform/Environment.h"
#include "platform/WideText.h"

namespace Tarnex::Core {
namespace {

class ProgramLocations : public AppLocations {
public:
    ioPath GetApplicationDirectory() const override { return directory; }

private:
    const ioPath directory =
        std::filesystem::path(Platform::Narrow(Platform::GetProgramPath())).parent_path().string();
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
