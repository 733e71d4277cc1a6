#pragma once

namespace Tarnex::Core::Utils {

/// The whole run: takes the arguments (UTF-8; it may change them) and returns the process's exit
/// code. Call it once, on the main thread. Throws nothing. The watch-dog may end the process
/// instead.
[[nodiscard]] int Assayer(int argc, char** argv);

}  // namespace Tarnex::Core::Utils
