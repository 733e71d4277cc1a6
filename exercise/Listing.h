#pragma once

#include <string>

#include "exercise/Request.h"

namespace Tarnex::Exercise {

/// Loads all modules of a request and returns what they contain as one JSON object:
///
///     {"modules": {NAME: [{"id": ID, "interface": INTERFACE}, ...]},
///      "failed": {NAME: TEXT},
///      "files": [PATH, ...]}
///
/// `files` is what the process then has mapped, with links resolved.
std::string ListModules(const Request& request);

}  // namespace Tarnex::Exercise
