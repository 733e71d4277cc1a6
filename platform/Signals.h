#pragma once

namespace Tarnex::Platform {

/// Makes impossible writes (to a file at its size limit, to a pipe without a reader) fail instead
/// of ending the process. Affects the whole process.
void IgnoreWriteSignals();

/// Turns SIGINT, SIGTERM and SIGHUP into something to read, from here to the end of the process.
/// SIGHUP stays ignored if it is, as `nohup` has it.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();

    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// The signal that came; 0 if none did.
    int Take() const;

    int descriptor;  ///< readable once a signal came
};

}  // namespace Tarnex::Platform
