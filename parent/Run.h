#pragma once

#include <boost/filesystem/path.hpp>

#include "core/support/Exception.h"
#include "parent/Follower.h"
#include "platform/Process.h"

namespace Tarnex::Parent {

/// The whole check has to end; the text says why.
class CheckFailure : public Exception {
    using Exception::Exception;
};

/// No further run can help this phase; the text says why. Its items stay `NotReached`.
class PhaseFailure : public Exception {
    using Exception::Exception;
};

/// A run that is wanted.
struct Job {
    boost::filesystem::path program;
    Names arguments;
    Follower follower;
    Names unnamed{};                   ///< what it touches without naming it
    std::chrono::seconds startTime{};  ///< to the first item
    std::chrono::seconds stepTime{};   ///< from each sign of progress to the next, and to the end
    std::chrono::seconds wholeTime{};  ///< whatever it writes
    bool quiet = false;                ///< nothing else runs beside it
    bool keepOutput = false;           ///< what it writes to standard output is wanted
    bool wantFiles = false;            ///< what it has mapped at the end is wanted
    bool ownHome = false;              ///< it gets a home that goes with the run
    bool repeated = false;
};

/// One process of a check, from its start to its end.
class Run {
public:
    /// `listener` is told what the process writes, under the number `index`. Throws
    /// `std::system_error` if the system gives no process.
    Run(Job job, const Names& environment, CheckListener& listener, std::size_t index);

    /// Reads what there is and holds the deadline. True once the process and all that it started
    /// have ended. Throws `PhaseFailure` if there was no start.
    bool Advance();

    /// Ends it at once: what is open has no outcome.
    void Stop();

    Job job;
    Platform::Process process;
    const std::size_t index;  ///< in `CheckResult::runs`
    const Clock::time_point started = Clock::now();
    Clock::time_point deadline;  ///< for the next step
    RunEnd end;
    double seconds = 0;
    double startSeconds = 0;      ///< to the first item
    std::string output;           ///< if it is wanted
    std::string lastWords;        ///< the end of standard error
    std::string survivors;        ///< what SIGKILL doesn't end
    std::set<std::string> files;  ///< mapped near its end, if they are wanted

private:
    bool Read();
    void Follow(const Record& record);
    void LookAtFiles();
    void Finish(const Platform::ProcessReport& report);
    RunEnd ToEnd(const Platform::ProcessReport& report) const;

    CheckListener& listener;
    RecordReader reader;
    std::chrono::seconds allowed;  // for the step under way
    bool late = false;
    bool stopped = false;
};

}  // namespace Tarnex::Parent
