#pragma once

namespace Tarnex::Assay {

/// Turns the first SIGINT or SIGTERM into something to read, as long as it lives; a second one of
/// the kind ends the process. One at a time.
class StopSignals {
public:
    /// Throws `std::system_error`.
    StopSignals();
    ~StopSignals();

    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// Readable once a signal came.
    int Descriptor() const { return readEnd; }

    /// The signal that came; 0: none.
    static int Caught();

private:
    int readEnd = -1;
};

}  // namespace Tarnex::Assay
