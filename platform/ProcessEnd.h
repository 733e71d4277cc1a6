#pragma once

namespace Tarnex::Platform {

/// Ends the process by `exit(code)` from whatever thread, while others are inside of libraries
/// whose globals `exit` destroys: these threads are stopped first, for good, wherever they are.
/// Threads that block all signals go on. A fault in an exit handler doesn't change the code.
///
/// Can hang where a stopped thread holds a lock that `exit` needs: the caller provides for that.
[[noreturn]] void EndProcess(int code);

}  // namespace Tarnex::Platform
