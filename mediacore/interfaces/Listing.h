#pragma once

#include <cstdint>

#include "mediacore/SharedLibrary.h"

/// What CLAP and VST3 share: tables of functions, and a number of plugins that the module tells.
namespace Tarnex::Core {

/// Refuses the module if a function that hosts call without a check is null.
template <class Function>
void RequireFunction(const SharedLibrary& library, Function* function, const char* name) {
    if (function == nullptr) {
        library.Refuse(std::string("has no function ") + name);
    }
}

/// Refuses a number that can only be a mistake, before that many plugins are asked for. `what`
/// names the counted things.
void RequireCredible(const SharedLibrary& library, std::int64_t count, const char* what);

}  // namespace Tarnex::Core
