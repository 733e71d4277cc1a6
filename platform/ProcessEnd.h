#pragma once

namespace Tarnex::Platform {

/// Ends the process by `exit(code)` from whatever thread, while others are inside of libraries
/// whose globals `exit` destroys. A fault, theirs or an exit handler's, ends it at once with the
/// same code.
///
/// Can hang where another thread holds a lock that `exit` needs: the caller provides for that.
[[noreturn]] void EndProcess(int code);

}  // namespace Tarnex::Platform
