#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "parent/Run.h"

namespace Tarnex::Parent {

/// Whether Assayer ended as it shouldn't after all that it should touch.
bool EndsBadly(const Run& run);

/// Runs side by side, which one thread follows.
class Runs {
public:
    /// What limits them: the most at a time, a descriptor that becomes readable when they should
    /// end (-1: none), and the time until which they may work.
    struct Limits {
        unsigned int jobs;
        int stop;
        Clock::time_point until;
    };

    Runs(const Limits& limits, CheckListener& listener, CheckResult& result);

    /// Asked whenever there is room for another run; none means: not now.
    using Next = std::function<std::optional<Job>()>;
    /// Is told of each run that ended.
    using Take = std::function<void(const Run&)>;

    /// Runs what `next` gives until it gives nothing and no run is left. One that ended before it
    /// named an item is repeated once, then it is a `PhaseFailure`, or a `CheckFailure` if it gave
    /// an error of the whole run both times. Throws `CheckFailure` too if it has to end early or a
    /// run couldn't read its list. No run is left after a throw, and `take` has got what each saw.
    void Drain(const Next& next, const Take& take);

    /// All of these; those that have to be alone come last.
    void RunAll(std::vector<Job> jobs, const Take& take);

    Progress progress{};  ///< of the finished runs
    Strays strays;        ///< of all runs

private:
    void Fill(const Next& next);
    void Start(Job job);
    void Await();
    void AdvanceAll(const Take& take);
    void Conclude(const Run& run, const Take& take);
    void StopAll(const Take& take);
    void AddFacts(const Run& run);
    void Repeat(const Run& run);
    void TellOpen(const Job& job);
    void TellProgress();

    const Limits limits;
    CheckListener& listener;
    CheckResult& result;
    const Names environment;
    std::vector<std::unique_ptr<Run>> active;
    std::deque<Job> waiting;  // to be alone, or to be repeated
    Clock::time_point lastProgress;
};

}  // namespace Tarnex::Parent
