#pragma once

namespace Tarnex::Platform {

/// Lets a write that can't be done (a file that would exceed its limit, a pipe without a reader)
/// fail instead of ending the process. Holds for the whole process.
void IgnoreWriteSignals();

}  // namespace Tarnex::Platform
