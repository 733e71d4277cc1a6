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
    /// All of these; those that have to be alone come last.
    void RunAll(std::vector<Job> jobs, const std::function<void(const Run&)>& take);
    /// One by itself.
    Watch RunOne(const Job& job);

    /// A run that should touch these, with texts for the program's positions from the third on, by
    /// number. The others get the placeholder for nothing, as an empty text does.
    Job MakeJob(ItemKind kind, const Names& expected,
                const std::map<std::size_t, std::string>& positions) const;

    /// Writes a plugin list into the folder for lists and gives its path; an empty one if there are
    /// no names. Throws `CheckFailure`.
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

/// Separated by commas.
std::string Join(const Names& names);

/// The command, as an argument vector, that shows an item again.
Names ToRepro(const CheckOptions& options, const Names& arguments);

}  // namespace Tarnex::Parent
