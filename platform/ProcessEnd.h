#pragma once

namespace Tarnex::Platform {

/// Ends the process by `exit(code)`. Any thread may call it, even while other threads run in
/// libraries whose globals `exit` destroys: if they or an exit handler then crash, the process ends
/// at once with the same code.
///
/// Can hang if another thread holds a lock that `exit` needs; the caller has to provide for that.
[[noreturn]] void EndProcess(int code);

}  // namespace Tarnex::Platform
