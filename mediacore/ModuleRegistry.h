#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/module/Module.h"

namespace Tarnex::Core {

using ShutdownHandlers = std::vector<std::pair<std::string, Module::ShutdownFunction*>>;

/// Loads the module of our own interface that a plugin has, unless that is done, and gives what it
/// offers. Throws `Proc::CodecFactoryErrorException` with the module and the reason; what the
/// module throws passes through. Thread-safe.
const Module::Description& LoadModule(const std::string& plugin);

/// The shut-down functions of the modules loaded so far, each with its plugin's name, last first.
ShutdownHandlers GetShutdownHandlers();

}  // namespace Tarnex::Core
