#include "core/media/CoreInitExtension.h"

#include "mediacore/ModuleRegistry.h"

namespace Tarnex::Core::Utils {

std::vector<std::pair<std::string, CoreInitExtension::DeinitHandler>>
CoreInitExtension::GetDeinitHandlers() {
    return GetShutdownHandlers();
}

}  // namespace Tarnex::Core::Utils
