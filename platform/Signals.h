#pragma once

namespace Tarnex::Platform {

/// Makes impossible writes (to a file at its size limit, to a pipe without a reader) fail instead
/// of ending the process. Affects the whole process.
void IgnoreWriteSignals();

}  // namespace Tarnex::Platform
