#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "parent/Session.h"
#include "parent/Watch.h"
#include "platform/Process.h"

struct pollfd;

namespace Tarnex::Parent {

class Run;

/// A run that is wanted.
struct Job {
    Names arguments;
    Watch watch;
    std::function<void(const Run&)> done;  ///< may want further ones
    bool alone = false;                    ///< nothing else runs beside it
    bool helper = false;                   ///< it's the helper program, whose output is wanted
};

/// One process of a check, from its start to its end.
class Run {
public:
    Run(Session& session, const Names& environment, Job job);

    const Job& GetJob() const { return job; }
    const Watch& GetWatch() const { return job.watch; }
    const RunFacts& Facts() const { return session.result.runs[index]; }
    const std::string& Output() const { return output; }
    const std::string& LastWords() const { return lastWords; }  ///< end of standard error
    double StartSeconds() const { return startSeconds; }        ///< to the first item

    void AddDescriptors(std::vector<pollfd>& descriptors) const;
    Clock::time_point Deadline() const { return deadline; }

    /// Reads what there is and holds the deadline. True once the process and all that it started
    /// have ended.
    bool Advance();

    /// Ends it at once.
    void Stop();

private:
    void ReadError();
    void Follow(const Record& record);
    void Finish(const Platform::ProcessReport& report);
    RunEnd ToEnd(const Platform::ProcessReport& report) const;

    Session& session;
    Job job;
    const std::size_t index;
    const Clock::time_point started = Clock::now();
    Clock::time_point deadline;
    RecordReader reader;
    std::string output;
    std::string lastWords;
    double startSeconds = 0;
    bool late = false;
    Platform::Process process;
    int errorPipe;   // -1 from its end on
    int outputPipe;  // the same
};

/// For a run that named no item: the first time it may be repeated. Throws `PhaseFailure`, which
/// tells how it ended, if `repeated` is set already; sets it.
void RequireFirst(bool& repeated, const Run& run);

/// Runs side by side, followed by one thread.
class Runs {
public:
    /// Asked whenever there is room for another run; none means: not now.
    using Next = std::function<std::optional<Job>()>;

    explicit Runs(Session& session);

    /// Until there is no run and `next` gives none. Throws `CheckFailure` once the stop descriptor
    /// is readable or a run's end forbids to go on, and what `done` throws; no run is left then.
    void Drain(const Next& next);
    void Drain(std::deque<Job>& queue);

    /// One run by itself; gives what it was followed by.
    Watch RunNow(Job job);

private:
    void Fill(const Next& next);
    void Await();
    void AdvanceAll();
    void TakeEnd(const Run& run);
    void TellProgress();

    Session& session;
    const Names environment;
    std::vector<std::unique_ptr<Run>> active;
    std::optional<Job> waiting;  // for the others to end
    Clock::time_point lastProgress;
};

}  // namespace Tarnex::Parent
