#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "parent/Installation.h"
#include "parent/Run.h"

namespace Tarnex::Parent {

/// No further run can help this phase; the text says why. Its items stay `NotReached`.
class PhaseFailure : public Exception {
    using Exception::Exception;
};

/// What the phases of a check have in common: above all the runs side by side, which one thread
/// follows.
class Session {
public:
    /// `options.application` must be absolute. Throws as `ReadPluginOrder` does.
    Session(const CheckOptions& options, CheckListener& listener, CheckResult& result);

    /// Asked whenever there is room for another run; none means: not now.
    using Next = std::function<std::optional<Job>()>;

    /// Runs what `next` gives until it gives nothing and no run is left. One that ended before it
    /// named an item is repeated once, then it is a `PhaseFailure`. Throws `CheckFailure` once the
    /// stop descriptor is readable or a run's end forbids to go on; no run is left after a throw,
    /// and `take` has got what they had seen.
    void Drain(const Next& next, const std::function<void(const Run&)>& take);
    /// All of these; those that have to be alone come last. `take` gets their places.
    void RunAll(const std::vector<Job>& jobs,
                const std::function<void(std::size_t, const Run&)>& take);
    /// One by itself.
    Watch RunOne(const Job& job);

    /// The second of the program's positions: a time that no run reaches, because each item's own
    /// limit ends it before.
    std::string Time(std::size_t items) const;

    /// Writes a plugin list into the folder for lists and gives its path; the placeholder for
    /// nothing if there are no names. Throws `CheckFailure`.
    std::string WriteList(const std::string& name, const Names& plugins) const;

    /// Tells the listener, each item once.
    void Tell(const Item& item);
    void Note(const std::string& text);

    const CheckOptions& options;
    CheckListener& listener;
    CheckResult& result;
    const std::vector<PluginPlace> order;
    Progress progress{};  ///< of the finished runs

private:
    void Fill(const Next& next);
    void Start(Job job);
    void Await();
    void AdvanceAll(const std::function<void(const Run&)>& take);
    void AddFacts(const Run& run);
    bool IsToRepeat(const Run& run);
    void TellProgress();

    const Names environment;
    std::vector<std::unique_ptr<Run>> active;
    std::deque<Job> waiting;  // to be alone, or to be repeated
    Clock::time_point lastProgress;
    std::set<const Item*> told;
};

/// Joined by commas; the placeholder for nothing if there are none.
std::string JoinOrNothing(const Names& names);

/// The command, as an argument vector, that shows an item again.
Names ToRepro(const CheckOptions& options, const Names& arguments);

}  // namespace Tarnex::Parent
