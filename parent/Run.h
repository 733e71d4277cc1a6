#pragma once

#include "core/support/Exception.h"
#include "parent/Watch.h"
#include "platform/Process.h"

namespace Tarnex::Parent {

/// The whole check has to end; the text says why.
class CheckFailure : public Exception {
    using Exception::Exception;
};

/// A run that is wanted.
struct Job {
    Names arguments;
    Watch watch;
    bool alone = false;   ///< nothing else runs beside it
    bool helper = false;  ///< it is the helper program, whose output is wanted
    bool repeated = false;
};

/// One process of a check, from its start to its end.
class Run {
public:
    /// Throws `std::system_error` if the system gives no process.
    Run(const CheckOptions& options, CheckListener& listener, std::size_t index,
        const Names& environment, Job job);

    /// Reads what there is and holds the deadline. True once the process and all that it started
    /// have ended. Throws `CheckFailure` if there was no start.
    bool Advance();

    /// Ends it at once: what is open has no outcome.
    void Stop();

    Job job;
    Platform::Process process;
    const std::size_t index;     ///< in `CheckResult::runs`
    Clock::time_point deadline;  ///< for the next step
    RunEnd end;
    double seconds = 0;
    double startSeconds = 0;  ///< to the first item
    std::string output;       ///< of the helper
    std::string lastWords;    ///< the end of standard error
    std::string survivors;    ///< what SIGKILL doesn't end

private:
    void Read();
    void Follow(const Record& record);
    void Finish(const Platform::ProcessReport& report);
    RunEnd ToEnd(const Platform::ProcessReport& report) const;

    const CheckOptions& options;
    CheckListener& listener;
    const Clock::time_point started = Clock::now();
    RecordReader reader;
    bool late = false;
    bool stopped = false;
};

}  // namespace Tarnex::Parent
