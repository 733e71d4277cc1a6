#pragma once

#include <deque>
#include <map>
#include <set>

#include "parent/Runs.h"

namespace Tarnex::Parent {

/// Tests codecs in batches, several runs at a time, and looks at each culprit and each failure
/// again.
class CodecPhase {
public:
    /// `leftOut`: plugins that the core must start without. Decides what is `NotReached` among the
    /// items.
    CodecPhase(Session& session, Runs& runs, Names leftOut, std::vector<Item>& items);

    /// Throws as `Runs::Drain` does.
    void Check();

private:
    struct Batch {
        Names tests;
        bool repeated = false;
    };
    /// What a test did the first time.
    struct Sight {
        Attempt attempt;
        Names arguments;
    };

    std::optional<Job> Next();
    Batch Deal();
    std::size_t BatchSize() const;
    Job TestJob(const Names& tests) const;
    Job BatchJob(Batch batch);
    void TakeBatch(const Run& run, Batch batch);
    void TakeAttempt(const std::string& name, const Attempt& attempt, const Run& run);
    void Measure(const Run& run);
    void GoOn(const Run& run, Batch batch, std::deque<Batch>& queue);

    void AddTrial(const std::string& name, bool repeated);
    void TakeTrial(const Run& run, const std::string& name, bool repeated);
    void LookAgain();
    void TakeSecondLook(const Run& run, Batch batch, std::deque<Batch>& rest);

    void Decide(const std::string& name, const Attempt& seen, const Attempt& alone);
    std::string InputOf(const Item& decoder) const;
    void TellDecoders();

    Session& session;
    Runs& runs;
    const Names leftOut;
    std::vector<Item>& items;
    std::map<std::string, Item*> byName;
    std::deque<std::string> ids;  // not dealt out yet
    std::deque<Batch> batches;    // to go on with
    std::deque<Job> trials;
    std::map<std::string, Sight> sights;  // of culprits and failures
    std::set<std::string> enders;
    double startSeconds = 0;
    double secondsOfId = 0;  // 0: not measured
};

}  // namespace Tarnex::Parent
