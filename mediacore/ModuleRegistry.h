#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/module/Module.h"

namespace Tarnex::Core {

using ShutdownHandlers = std::vector<std::pair<std::string, Module::ShutdownFunction*>>;

/// Loads the module of our own interface that a plugin has, unless that is done, and gives what it
/// offers. Throws `Proc::CodecFactoryErrorException` with the plugin, its module and the reason,
/// which may be the text of what the module threw. Thread-safe.
Module::Description LoadModule(const std::string& plugin);

/// The shut-down functions of the modules loaded so far, each with its plugin's name, last first.
ShutdownHandlers GetShutdownHandlers();

}  // namespace Tarnex::Core
