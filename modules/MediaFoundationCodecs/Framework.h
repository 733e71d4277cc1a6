#pragma once

#include <string>

namespace Tarnex::MediaFoundation {

/// Starts the system's media framework, the first time; scanning its plugins may take a second
/// then. Its messages don't reach standard error. Returns why it doesn't start, empty if it does.
/// Thread-safe.
[[nodiscard]] const std::string& StartFramework();

/// Whether the framework's automatic choice has a software decoder for such a stream. To be asked
/// of a started framework.
[[nodiscard]] bool HasDecoder(const char* caps);

/// Whether the framework has an element of that name. To be asked of a started framework.
[[nodiscard]] bool HasElement(const char* name);

}  // namespace Tarnex::MediaFoundation
