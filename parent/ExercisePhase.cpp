#include <algorithm>
#include <nlohmann/json.hpp>

#include "parent/ExerciseListing.h"
#include "parent/Phases.h"
#include "parent/Testing.h"

namespace Tarnex::Parent {
namespace {

/// Exercises of one module that a run does together, at most. More would make a batch coarse.
constexpr std::size_t LARGEST_GROUP = 8;
/// At depth "stress" an exercise may take ten times the time of an item.
constexpr std::size_t STRESS_FACTOR = 10;

class ExercisePhase : public TestKind {
public:
    ExercisePhase(Session& session, const ExerciseRequests& requests, std::vector<Item>& exercises)
        : session(session),
          requests(requests),
          exercises(exercises),
          testing(session, *this, exercises) {}

    void Check() {
        session.runs.progress.phase = "exercises";
        testing.Check(MakeGroups());
    }

    Job MakeJob(const Names& tests) override {
        Job job = MakeRun(tests, "exercise");
        job.ownHome = true;
        return job;
    }

    Job MakeTrial(const std::string& test) override { return MakeRun({test}, "alone"); }

    std::size_t CountBytes(const Names&) const override { return 0; }  // The request is a file.

    bool TriesFailuresAlone() const override { return true; }

    Attempt Assess(const Item&, const Attempt& attempt) const override { return attempt; }

    /// The first try has a home of its own, the second the user's: a plugin may keep its licence
    /// there.
    void Judge(Item& item, const Suspect& suspect) const override {
        const Attempt& alone = *suspect.alone;
        if (IsBad(alone.verdict)) {
            Parent::Judge(item, suspect.seen, alone);
            return;
        }
        Parent::Judge(item, alone, alone);
        item.remarks.push_back("bad at first, with an empty home and other modules loaded: " +
                               suspect.seen.reason);
    }

    bool IsFinal(const Item&) const override { return true; }

private:
    std::deque<Names> MakeGroups() const {
        std::deque<Names> groups;
        const std::string* plugin = nullptr;
        for (const Item& item : exercises) {
            if (item.verdict != Verdict::NotReached || item.id.empty()) {
                continue;
            }
            if (plugin == nullptr || *plugin != item.plugin ||
                groups.back().size() == LARGEST_GROUP) {
                groups.emplace_back();
            }
            plugin = &item.plugin;
            groups.back().push_back(item.name);
        }
        return groups;
    }

    Job MakeRun(const Names& tests, const std::string& stem) {
        std::vector<const Item*> items;
        for (const std::string& test : tests) {
            items.push_back(&testing.Find(test));
        }
        Job job = session.MakeHelperJob(
            session.installation.GetExerciser(),
            {"run", session.WriteFile(session.NextFile(stem, "json"), requests.ToUse(items))},
            Follower(Work::Exercise, tests));
        const std::size_t factor = session.options.depth == "stress" ? STRESS_FACTOR : 1;
        job.wholeTime = session.options.itemTime * (tests.size() * factor * 2 + 1);
        return job;
    }

    Session& session;
    const ExerciseRequests& requests;
    std::vector<Item>& exercises;
    Testing testing;
};

}  // namespace

void CheckExercises(Session& session, const std::vector<Item>& plugins, const Carried& carried,
                    std::vector<Item>& exercises) {
    const ExerciseRequests requests(session, plugins);
    ListExercises(session, requests, plugins, carried, exercises);
    if (session.options.depth == "load") {
        exercises.clear();  // The listing told which libraries the modules rest on.
        return;
    }
    session.Spare(exercises);
    for (const Item& item : exercises) {
        if (item.verdict != Verdict::NotReached) {
            session.Tell(item);
        }
    }
    ExercisePhase(session, requests, exercises).Check();
}

}  // namespace Tarnex::Parent
