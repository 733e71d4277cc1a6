#pragma once

#include <string>

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

/// The plugin's module in the application directory or, if that is a link, the file that it leads
/// to, so that the module finds the files beside it. Doesn't say whether there is such a file.
/// Follows links once for each plugin: right before a load, when the loads of other modules have
/// emptied the processor's caches, that takes three times as long. Thread-safe.
TARNEX_API ioPath FindModuleFile(const std::string& plugin);

}  // namespace Tarnex::Core
