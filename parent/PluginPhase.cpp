#include <algorithm>
#include <utility>

#include "parent/Minimize.h"
#include "parent/Phases.h"

namespace Tarnex::Parent {
namespace {

constexpr int MAX_COMPANY_RUNS = 64;
constexpr std::chrono::minutes MAX_COMPANY_TIME{2};
/// What only a crowd does, none of it does: it uses something up.
constexpr std::size_t MOST_SPOILERS = 3;

/// Was bad in company.
struct Suspect {
    std::string name;
    Attempt seen;
    Names before;  // loaded before it in that run
    Attempt alone{};
};

class PluginPhase {
public:
    PluginPhase(Session& session, std::vector<Item>& plugins)
        : session(session), plugins(plugins) {}

    void Check() {
        try {
            CheckAll();
        } catch (const Exception&) {
            DecidePassed();
            throw;
        }
        DecidePassed();
    }

private:
    void CheckAll() {
        session.progress = {"plugins", 0, Loadable().size(), {}, {}};
        while (session.progress.total > 0 && Loop()) {
        }
        while (!suspects.empty()) {
            session.progress.phase = "trials";
            const std::vector<Suspect> unsteady = TrySuspects();
            session.progress.phase = "company";
            for (const Suspect& suspect : unsteady) {
                FindCompany(suspect);
            }
        }
    }

    void DecidePassed() {
        for (const auto& [name, attempt] : passed) {
            if (IsOpen(Find(name))) {
                Judge(Find(name), attempt, attempt);
            }
        }
    }

    Item& Find(const std::string& name) { return *std::ranges::find(plugins, name, &Item::name); }

    bool IsOpen(const Item& item) const {
        return item.verdict == Verdict::NotReached && session.options.Wants(item);
    }

    Names Loadable() const {
        Names names;
        for (const Item& item : plugins) {
            if (IsOpen(item) && !culprits.contains(item.name)) {
                names.push_back(item.name);
            }
        }
        return names;
    }

    /// A run that loads these, at all their places after the culprit, and nothing else.
    Job LoadJob(const Names& names, const std::string& listName, const std::string& culprit = {}) {
        Names expected, others;
        bool begun = culprit.empty();
        for (const auto& [name, factory] : session.order) {
            if (!Contains(names, name)) {
                others.push_back(name);
            } else if (begun) {
                expected.push_back(name);
            }
            begun = begun || name == culprit;
        }
        return session.MakeJob(ItemKind::Plugin, expected,
                               {{6, session.WriteList(listName, others)}, {8, culprit}});
    }

    /// One run over what is left; false once all was loaded.
    bool Loop() {
        Watch watch;
        session.RunAll({LoadJob(Loadable(), "known.list", after)}, [&](const Run& run) {
            watch = run.job.watch;
            TakePassed(watch);
        });
        if (!watch.finished && MarkVanished(watch)) {
            return true;
        }
        TakeBad(watch);
        session.progress.done = passed.size() + suspects.size();
        after = watch.culprit;
        culprits.insert(after);
        return !watch.finished && !after.empty();
    }

    void TakePassed(const Watch& watch) {
        for (const auto& [name, attempt] : watch.attempts) {
            if (!IsBad(attempt.verdict)) {
                passed[name] = attempt;
            }
        }
    }

    void TakeBad(const Watch& watch) {
        for (const auto& [name, attempt] : watch.attempts) {
            if (IsBad(attempt.verdict)) {
                const auto place = std::ranges::find(watch.begun, name);
                suspects.push_back({name, attempt, {watch.begun.begin(), place}});
            }
        }
    }

    /// Somebody may remove a module while we are at work: Assayer passes it over then.
    bool MarkVanished(const Watch& watch) {
        bool any = false;
        for (const std::string& name : watch.Untouched()) {
            if (IsOpen(Find(name)) && !HasModule(session.options.application, name)) {
                Find(name).verdict = Verdict::Missing;
                any = true;
            }
        }
        return any;
    }

    /// Gives those that turned out unsteady.
    std::vector<Suspect> TrySuspects() {
        std::vector<Suspect> tried = std::exchange(suspects, {});
        std::vector<Job> jobs;
        for (const Suspect& suspect : tried) {
            jobs.push_back(LoadJob({suspect.name}, NextList("alone")));
            jobs.back().alone = NeedsQuiet(suspect.seen);
        }
        session.RunAll(std::move(jobs), [&](const Run& run) {
            for (const auto& [name, attempt] : run.job.watch.attempts) {
                Suspect& suspect = *std::ranges::find(tried, name, &Suspect::name);
                suspect.alone = attempt;
                Decide(suspect, run.job.arguments);
            }
        });
        std::erase_if(tried, [this](const Suspect& suspect) {
            return Find(suspect.name).verdict != Verdict::Unsteady;
        });
        return tried;
    }

    void Decide(const Suspect& suspect, const Names& arguments) {
        Item& item = Find(suspect.name);
        Judge(item, suspect.seen, suspect.alone);
        if (IsBad(suspect.alone.verdict)) {
            item.repro = ToRepro(session.options, arguments);
        }
        if (EndsRuns(item.verdict)) {
            session.Tell(item);
        }
    }

    /// Not of a hang: each question may take as long as an item may.
    void FindCompany(const Suspect& suspect) {
        Item& item = Find(suspect.name);
        Names company = suspect.before;
        const bool again = suspect.seen.verdict != Verdict::Hung && !company.empty() &&
                           IsBadAmong(company, suspect);
        if (again) {
            company = Shrink(company, suspect);
        }
        if (!company.empty() && WasBlamedFalsely(suspect, company)) {
            return;
        }
        if (again) {
            item.company = company;
        }
        for (const std::string& name : item.company) {
            if (company.size() <= MOST_SPOILERS) {
                Find(name).spoils.push_back(item.name);
            }
        }
        company.push_back(item.name);
        item.repro = ToRepro(session.options, LoadJob(company, NextList("company")).arguments);
    }

    Names Shrink(const Names& company, const Suspect& suspect) {
        int left = MAX_COMPANY_RUNS - 1;
        const Clock::time_point until = Clock::now() + MAX_COMPANY_TIME;
        return Minimize(
            company, [&](const Names& part) { return IsBadAmong(part, suspect); },
            [&] { return left-- > 0 && Clock::now() < until; });
    }

    bool IsBadAmong(const Names& names, const Suspect& suspect) {
        Names all = names;
        all.push_back(suspect.name);
        const Watch watch = session.RunOne(LoadJob(all, "company.list"));
        const auto attempt = watch.attempts.find(suspect.name);
        return attempt != watch.attempts.end() && IsSame(attempt->second, suspect.seen);
    }

    /// A module can write records about others. Who is told of in a run that doesn't load it was
    /// blamed by such records: its trial counts, and whoever was bad in that run is suspected.
    bool WasBlamedFalsely(const Suspect& suspect, const Names& company) {
        const Watch control = session.RunOne(LoadJob(company, "company.list"));
        if (!Contains(control.strays, suspect.name)) {
            return false;
        }
        Judge(Find(suspect.name), suspect.alone, suspect.alone);
        session.Note("Records that blamed " + suspect.name + " came from another module, of " +
                     Join(company));
        for (const auto& [name, attempt] : control.attempts) {
            if (IsBad(attempt.verdict) && IsOpen(Find(name))) {
                suspects.push_back({name, attempt, {}});
            }
        }
        return true;
    }

    std::string NextList(const std::string& stem) {
        return stem + "-" + std::to_string(++lists) + ".list";
    }

    Session& session;
    std::vector<Item>& plugins;
    std::string after;  // the culprit of the last run
    std::set<std::string> culprits;
    std::map<std::string, Attempt> passed;
    std::vector<Suspect> suspects;
    int lists = 0;
};

}  // namespace

void CheckPlugins(Session& session, std::vector<Item>& plugins) {
    PluginPhase(session, plugins).Check();
}

}  // namespace Tarnex::Parent
