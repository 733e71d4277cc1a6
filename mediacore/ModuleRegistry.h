#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/module/Module.h"

namespace Tarnex::Core {

using ShutdownHandlers = std::vector<std::pair<std::string, Module::ShutdownFunction*>>;

/// Loads a plugin's module of our own interface unless it is loaded already, and returns what it
/// offers. Throws `Proc::CodecFactoryErrorException` with the plugin, its module and the reason,
/// which may be the text of what the module threw. Thread-safe.
Module::Description LoadModule(const std::string& plugin);

/// The shut-down functions of the modules loaded so far, with their plugins' names, last loaded
/// first.
ShutdownHandlers GetShutdownHandlers();

}  // namespace Tarnex::Core
