#pragma once

#include <string>

namespace Tarnex::MediaFoundation {

/// Starts the system's media framework at the first call, which may take a second to scan plugins.
/// Its messages don't reach standard error. Returns why it doesn't start; empty if it does.
/// Thread-safe.
[[nodiscard]] const std::string& StartFramework();

/// Whether the framework would choose a software decoder for such a stream. The framework must be
/// started.
[[nodiscard]] bool HasDecoder(const char* caps);

/// Whether the framework has an element of that name. The framework must be started.
[[nodiscard]] bool HasElement(const char* name);

}  // namespace Tarnex::MediaFoundation
