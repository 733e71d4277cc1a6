#pragma once

#include "core/Export.h"
#include "core/support/ioPath.h"

namespace Tarnex::Core {

class TARNEX_API AppLocations {
public:
    static const AppLocations& GetLocations();
    virtual ~AppLocations() = default;

    /// The directory of the running program, links resolved. Modules and samples lie there.
    virtual ioPath GetApplicationDirectory() const = 0;
};

/// The file name that a module of that plugin name has on this platform.
TARNEX_API ioPath GetPlatformModuleName(const ioPath& plugin);

}  // namespace Tarnex::Core
