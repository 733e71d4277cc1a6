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

/// What the file name of a plugin's module ends in, after the plugin's name.
#if defined(_WIN32)
inline constexpr char MODULE_EXTENSION[] = ".dll";
#else
inline constexpr char MODULE_EXTENSION[] = ".so";
#endif

/// The file name of the plugin's module on this platform.
TARNEX_API ioPath GetPlatformModuleName(const ioPath& plugin);

/// The plugin's module in the application directory or, if that is a link, the file that it leads
/// to, so that the module finds the files beside it. A file that has several names, or several
/// spellings of one, is given by the path that was found first. Doesn't say whether there is such a
/// file. Links are followed at the first call for a plugin; a later change isn't noticed. Ask for
/// all plugins before the first load: between loads it takes three times as long, because the loads
/// use up the processor's caches. Thread-safe.
TARNEX_API ioPath FindModuleFile(const std::string& plugin);

}  // namespace Tarnex::Core
