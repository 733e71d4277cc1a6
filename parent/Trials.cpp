#include "parent/Trials.h"

#include <unordered_map>

#include "parent/Session.h"

namespace Tarnex::Parent {
namespace {

/// Whether what ran beside the trial may have made the difference.
bool WantsQuiet(const Suspect& suspect) {
    return suspect.alone && !IsSame(suspect.seen, *suspect.alone) &&
           (NeedsQuiet(suspect.seen) || NeedsQuiet(*suspect.alone));
}

class Trials {
public:
    Trials(Runs& runs, const MakeTrial& makeTrial, const std::function<void(Suspect&)>& decide)
        : runs(runs), makeTrial(makeTrial), decide(decide) {}

    void Try(std::vector<Suspect>& suspects) {
        std::vector<Suspect*> all;
        all.reserve(suspects.size());
        for (Suspect& suspect : suspects) {
            all.push_back(&suspect);
        }
        RunEach(std::exchange(all, {}), false);
        RunEach(std::exchange(again, {}), true);
    }

private:
    /// Makes each run when there is room for it: its list files are long where there are many
    /// plugins.
    void RunEach(const std::vector<Suspect*>& suspects, bool quiet) {
        std::unordered_map<std::string, Suspect*> byName;
        auto next = suspects.begin();
        runs.Drain(
            [&]() -> std::optional<Job> {
                if (next == suspects.end()) {
                    return std::nullopt;
                }
                Suspect& suspect = **next++;
                byName[suspect.name] = &suspect;
                Job job = makeTrial(suspect.name);
                job.quiet = job.quiet || quiet;
                suspect.trial = ToCommand(job);
                return job;
            },
            [&](const Run& run) {
                Take(run, *byName.at(run.job.follower.expected.front()), quiet);
            });
    }

    void Take(const Run& run, Suspect& suspect, bool quiet) {
        const auto& attempts = run.job.follower.attempts;
        const auto attempt = attempts.find(suspect.name);
        suspect.alone = attempt == attempts.end() ? std::nullopt : std::optional(attempt->second);
        if (suspect.alone && EndsBadly(run) && IsSame(suspect.seen, FromEnd(run.end))) {
            suspect.alone = FromEnd(run.end);  // It wrote itself that all was over.
        }
        if (!quiet && WantsQuiet(suspect)) {
            again.push_back(&suspect);
        } else {
            decide(suspect);
        }
    }

    Runs& runs;
    const MakeTrial& makeTrial;
    const std::function<void(Suspect&)>& decide;
    std::vector<Suspect*> again;
};

}  // namespace

void TrySuspects(Runs& runs, std::vector<Suspect>& suspects, const MakeTrial& makeTrial,
                 const std::function<void(Suspect&)>& decide) {
    Trials(runs, makeTrial, decide).Try(suspects);
}

}  // namespace Tarnex::Parent
