#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "parent/Company.h"
#include "parent/Phases.h"
#include "parent/PluginRuns.h"
#include "parent/RunSpoilers.h"
#include "parent/Trials.h"

namespace Tarnex::Parent {
namespace {

class PluginPhase {
public:
    PluginPhase(Session& session, std::vector<Item>& plugins)
        : session(session), plugins(plugins), loads(session) {
        for (Item& item : plugins) {
            byName[item.name] = &item;
        }
    }

    void Check() {
        try {
            CheckAll();
        } catch (...) {
            DecidePassed();
            throw;
        }
        DecidePassed();
    }

private:
    void CheckAll() {
        const std::size_t most = Loadable(false).size();
        const Names last = Loadable(true);
        session.runs.progress = {"plugins", 0, most + last.size(), {}, {}};
        while (most > 0 && Loop()) {
        }
        spoilersOfEnd = FindSpoilersOfEnd(session, loads, loadedAtBadEnd);
        CompanySearch search(session, loads, byName);
        TryAll(search);
        for (const std::string& name : last) {
            Load(loads.MakeJob({name}, session.NextFile("last", "list")));
        }
        TryAll(search);
    }

    void TryAll(CompanySearch& search) {
        while (!suspects.empty()) {
            session.runs.progress.phase = "trials";
            std::vector<Victim> unsteady = TryThem();
            session.runs.progress.phase = "company";
            suspects = search.Find(std::move(unsteady));
        }
    }

    void DecidePassed() {
        for (const auto& [name, attempt] : passed) {
            if (Item& item = *byName.at(name); IsOpen(item)) {
                Judge(item, attempt, attempt);
            }
        }
        if (!spoilersOfEnd.empty()) {
            NameSpoilersOfEnd();
        }
    }

    void NameSpoilersOfEnd() {
        std::string& badEnd = session.result.badEnd;
        const Job job = loads.MakeJob(spoilersOfEnd, session.NextFile("end", "list"));
        for (const std::string& name : spoilersOfEnd) {
            Item& item = *byName.at(name);
            item.remarks.push_back("makes its process end badly after all work is done: " + badEnd);
            item.repro = IsBad(item.verdict) ? item.repro : ToCommand(job);
        }
        badEnd += ", with " + Join(spoilersOfEnd) + " loaded";
    }

    bool IsOpen(const Item& item) const {
        return item.verdict == Verdict::NotReached && session.options.Wants(item);
    }

    Names Loadable(bool last) const {
        Names names;
        for (const Item& item : plugins) {
            if (IsOpen(item) && session.IsLast(item.name) == last &&
                !culprits.contains(item.name)) {
                names.push_back(item.name);
            }
        }
        return names;
    }

    /// One run over what is left; false once all was loaded.
    bool Loop() {
        loadedAtBadEnd.clear();
        return Load(loads.MakeJob(Loadable(false), "known.list", after));
    }

    /// Whether the run left something to load.
    bool Load(Job job) {
        bool goesOn = false;
        std::optional<Follower> unwatched;
        session.runs.RunAll({std::move(job)}, [&](const Run& run) {
            if (EndsBadly(run)) {
                loadedAtBadEnd = run.job.follower.begun;
            }
            if (run.job.follower.unwatched) {
                unwatched = run.job.follower;
            } else {
                goesOn = Take(run.job.follower);
            }
        });
        if (unwatched) {
            goesOn = TakeKeeperKillers(*unwatched) || Take(*unwatched);
        }
        session.runs.progress.done = passed.size() + suspects.size();
        return goesOn;
    }

    /// What else the run saw doesn't count: it goes again without them. False if there are none.
    bool TakeKeeperKillers(const Follower& follower) {
        const Names killers = FindKeeperKillers(session, loads, follower.begun);
        for (const std::string& name : killers) {
            AddSuspect(name, KilledKeeper(), std::make_shared<const Names>(follower.begun));
            culprits.insert(name);
        }
        return !killers.empty();
    }

    /// Whether there may be more to load.
    bool Take(const Follower& follower) {
        const auto names = std::make_shared<const Names>(follower.begun);
        for (const auto& [name, attempt] : follower.attempts) {
            if (IsBad(attempt.verdict)) {
                AddSuspect(name, attempt, names);
            } else {
                passed[name] = attempt;
            }
        }
        MarkVanished(follower.absent);
        after = follower.culprit;
        culprits.insert(after);
        return !follower.finished && !after.empty();
    }

    void AddSuspect(const std::string& name, const Attempt& seen,
                    const std::shared_ptr<const Names>& run) {
        const auto place = std::ranges::find(*run, name) - run->begin();
        suspects.push_back({{name, seen}, run, static_cast<std::size_t>(place)});
    }

    /// Somebody may remove a module while we are at work: Assayer passes it over then.
    void MarkVanished(const std::set<std::string>& absent) {
        for (const std::string& name : absent) {
            const auto item = byName.find(name);
            if (item != byName.end() && IsOpen(*item->second) &&
                !session.installation.HasModule(name)) {
                item->second->verdict = Verdict::Missing;
            }
        }
    }

    /// Gives those that turned out unsteady.
    std::vector<Victim> TryThem() {
        std::vector<Victim> victims = std::exchange(suspects, {});
        std::vector<Suspect> tried;
        std::ranges::transform(victims, std::back_inserter(tried), &Victim::suspect);
        TrySuspects(
            session.runs, tried,
            [this](const std::string& name) {
                Job job = loads.MakeJob({name}, session.NextFile("alone", "list"));
                job.quiet = session.IsLast(name);
                return job;
            },
            [this](const Suspect& suspect) { Decide(suspect); });
        std::vector<Victim> unsteady;
        for (std::size_t i = 0; i < victims.size(); ++i) {
            if (byName.at(tried[i].name)->verdict == Verdict::Unsteady) {
                victims[i].suspect = tried[i];
                unsteady.push_back(std::move(victims[i]));
            }
        }
        return unsteady;
    }

    void Decide(const Suspect& suspect) {
        Item& item = *byName.at(suspect.name);
        if (!suspect.alone) {
            MarkVanished({suspect.name});
            return;
        }
        Judge(item, suspect.seen, *suspect.alone);
        if (IsBad(suspect.alone->verdict)) {
            item.repro = suspect.trial;
        }
        if (EndsRuns(item.verdict)) {
            session.Tell(item);
        }
    }

    Session& session;
    std::vector<Item>& plugins;
    PluginRuns loads;
    std::unordered_map<std::string, Item*> byName;
    std::string after;  // the culprit of the last run
    std::unordered_set<std::string> culprits;
    std::map<std::string, Attempt> passed;
    std::vector<Victim> suspects;
    Names loadedAtBadEnd, spoilersOfEnd;
};

}  // namespace

void CheckPlugins(Session& session, std::vector<Item>& plugins) {
    PluginPhase(session, plugins).Check();
}

}  // namespace Tarnex::Parent
