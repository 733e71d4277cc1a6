#pragma once

namespace Tarnex::Core::Utils {

/// The whole run, from the arguments (UTF-8, may be changed) to the exit code of the process. To be
/// called once, on the main thread. Nothing is thrown. The watch-dog may end the process instead.
[[nodiscard]] int Assayer(int argc, char** argv);

}  // namespace Tarnex::Core::Utils
