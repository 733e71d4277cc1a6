#pragma once

#include <deque>
#include <unordered_map>

#include "parent/Session.h"
#include "parent/Trials.h"

namespace Tarnex::Parent {

/// What differs between kinds of tests that are dealt out to runs.
class TestKind {
public:
    virtual ~TestKind() = default;

    /// A run of these tests and no others.
    virtual Job MakeJob(const Names& tests) = 0;
    /// A run of one test by itself.
    virtual Job MakeTrial(const std::string& test) = 0;
    /// How many bytes of the command line tests take that are dealt out together.
    virtual std::size_t CountBytes(const Names& group) const = 0;
    /// Whether a test that failed is tried by itself, as one that ended a run is. Else those that
    /// failed go again together.
    virtual bool TriesFailuresAlone() const = 0;
    /// What to make of an outcome, before anything is looked at again.
    virtual Attempt Assess(const Item& item, const Attempt& attempt) const = 0;
    /// Sets the verdict of a test that was tried by itself.
    virtual void Judge(Item& item, const Suspect& suspect) const = 0;
    /// Whether nothing later can change the verdict.
    virtual bool IsFinal(const Item& item) const = 0;
};

/// Deals tests out in batches to runs side by side, finds who ends a run, goes on with the rest,
/// and looks at each culprit and each failure again.
class Testing {
public:
    /// `items`: all tests, of which those that are `NotReached` are wanted. They must stay where
    /// they are.
    Testing(Session& session, TestKind& kind, std::vector<Item>& items);

    /// `wanted`: the tests, those together that a run should do together. Throws as
    /// `Runs::Drain` does; what is decided by then is decided.
    void Check(std::deque<Names> wanted);

    /// Those of the last run that ended badly after them.
    const Names& GetTestsOfBadEnd() const { return testsOfBadEnd; }

    Item& Find(const std::string& name) { return *byName.at(name); }

private:
    void LookAtBad();
    std::optional<Job> NextBatch();
    Names Deal();
    std::size_t CountThatFit(const Names& tests) const;
    std::size_t CountWorthwhile() const;
    void TakeBatch(const Run& run);
    void TakeOutcomes(const Run& run);
    void Halve(const Follower& follower);
    void Measure(const Run& run);
    void GoOn(const Follower& follower, std::deque<Names>& queue);
    void TryAlone();
    void LookAgain();
    void LookOnce(Names tests, std::size_t most);
    void TakeLook(const std::string& name, const Attempt& attempt);
    void Decide(Item& item);

    Session& session;
    TestKind& kind;
    std::unordered_map<std::string, Item*> byName;
    std::deque<Names> groups;  // not dealt out yet
    std::size_t left = 0;      // tests in them
    std::deque<Names> rests;   // of batches whose runs ended early
    std::vector<Suspect> culprits;
    std::map<std::string, Attempt> failures;
    std::unordered_map<std::string, Names> batchOf;  // command of the run in which it was bad
    std::unordered_map<std::string, std::vector<Attempt>> looks;
    Names testsOfBadEnd;
    double startSeconds = 0;
    double secondsOfTest = 0;  // 0: not measured yet
};

}  // namespace Tarnex::Parent
