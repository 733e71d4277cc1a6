#pragma once

#include "core/Export.h"
#include "core/support/ioPath.h"

namespace Tarnex::Core {

class TARNEX_API AppLocations {
public:
    static const AppLocations& GetLocations();
    virtual ~AppLocations() = default;

    /// The directory of the running program, symbolic links resolved. It holds modules and samples.
    virtual ioPath GetApplicationDirectory() const = 0;
};

/// The file name of the plugin's module on this platform.
TARNEX_API ioPath GetPlatformModuleName(const ioPath& plugin);

}  // namespace Tarnex::Core
