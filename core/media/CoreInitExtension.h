#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/Export.h"

namespace Tarnex::Core::Utils {

class TARNEX_API CoreInitExtension {
public:
    using DeinitHandler = void (*)();

    /// The shut-down functions of the loaded modules that have one, each with its plugin's name,
    /// last loaded first. They may throw. Don't call this while modules are being loaded.
    static std::vector<std::pair<std::string, DeinitHandler>> GetDeinitHandlers();
};

}  // namespace Tarnex::Core::Utils
