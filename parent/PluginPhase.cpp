#include "parent/PluginPhase.h"

#include <algorithm>

#include "core/support/Constants.h"
#include "parent/Minimize.h"

namespace Tarnex::Parent {
namespace {

using Core::Utils::EMPTY_VALUE;

constexpr int MAX_COMPANY_RUNS = 64;
constexpr std::chrono::minutes MAX_COMPANY_TIME{2};
/// What only a crowd does, none of it does: it uses something up.
constexpr std::size_t MOST_SPOILERS = 3;

constexpr char LOOP_LIST[] = "known.list";
constexpr char COMPANY_LIST[] = "company.list";

Names PluginArguments(const std::string& seconds, const std::string& list,
                      const std::string& behind) {
    return {"plugins", seconds,     EMPTY_VALUE, EMPTY_VALUE, EMPTY_VALUE,
            list,      EMPTY_VALUE, behind,      EMPTY_VALUE, EMPTY_VALUE};
}

bool NeedsQuiet(const Attempt& attempt) {
    return attempt.verdict == Verdict::Hung || attempt.reason == "SIGKILL";
}

}  // namespace

PluginPhase::PluginPhase(Session& session, Runs& runs, const std::vector<PluginPlace>& order,
                         const std::set<std::string>& chosen, std::vector<Item>& items)
    : session(session),
      runs(runs),
      order(order),
      chosen(chosen),
      items(items),
      behind(EMPTY_VALUE) {}

void PluginPhase::Check() {
    session.progress = {"plugins", 0, Loadable().size(), {}, {}};
    if (session.progress.total == 0) {
        return;
    }
    queue.push_back(LoopJob());
    do {
        runs.Drain(queue);
        session.progress.phase = "company";
        for (const Suspect& suspect : std::exchange(unsteady, {})) {
            FindCompany(suspect);
        }
    } while (!queue.empty());
    DecideRest();
}

Item& PluginPhase::Find(const std::string& name) {
    return *std::find_if(items.begin(), items.end(),
                         [&](const Item& item) { return item.name == name; });
}

bool PluginPhase::IsOpen(const Item& item) const {
    return item.verdict == Verdict::NotReached && chosen.contains(item.name);
}

std::set<std::string> PluginPhase::Loadable() const {
    std::set<std::string> names;
    for (const Item& item : items) {
        if (IsOpen(item) && !culprits.contains(item.name)) {
            names.insert(item.name);
        }
    }
    return names;
}

/// All places of these names.
Names PluginPhase::Order(const std::set<std::string>& names) const {
    Names places;
    for (const PluginPlace& place : order) {
        if (names.contains(place.name)) {
            places.push_back(place.name);
        }
    }
    return places;
}

Names PluginPhase::OthersThan(const Names& names) const {
    std::set<std::string> others;
    for (const PluginPlace& place : order) {
        others.insert(place.name);
    }
    for (const std::string& name : names) {
        others.erase(name);
    }
    return {others.begin(), others.end()};
}

Names PluginPhase::Behind(const std::set<std::string>& wanted) const {
    Names expected;
    bool begun = behind == EMPTY_VALUE;
    for (const PluginPlace& place : order) {
        if (begun && wanted.contains(place.name)) {
            expected.push_back(place.name);
        }
        begun = begun || place.name == behind;
    }
    return expected;
}

Job PluginPhase::LoopJob() {
    const std::set<std::string> wanted = Loadable();
    Names expected = Behind(wanted);
    const std::string list =
        session.WriteList(LOOP_LIST, OthersThan({wanted.begin(), wanted.end()}));
    const std::string time = session.GenerousTime(expected.size());
    return {PluginArguments(time, list, behind), Watch(ItemKind::Plugin, std::move(expected)),
            [this](const Run& run) { TakeLoopRun(run); }};
}

void PluginPhase::TakeLoopRun(const Run& run) {
    const Watch& watch = run.GetWatch();
    if (!watch.IsFinished() && MarkVanished(watch)) {
        queue.push_front(LoopJob());
        return;
    }
    TakeAttempts(watch);
    if (watch.IsFinished()) {
        return;
    }
    if (watch.Culprit().empty()) {
        RequireFirst(repeated, run);
    } else {
        repeated = false;
        behind = watch.Culprit();
        culprits.insert(behind);
    }
    queue.push_front(LoopJob());
}

void PluginPhase::TakeAttempts(const Watch& watch) {
    const Names& begun = watch.Begun();
    for (const auto& [name, attempt] : watch.Attempts()) {
        seen.insert_or_assign(name, attempt);
        if (IsBad(attempt.verdict)) {
            const auto place = std::find(begun.begin(), begun.end(), name);
            AddTrial({name, attempt, {begun.begin(), place}, {}});
        }
    }
    session.progress.done = seen.size();
}

/// Somebody may remove a module while we are at work: Assayer passes it over then.
bool PluginPhase::MarkVanished(const Watch& watch) {
    bool any = false;
    for (const std::string& name : watch.Untouched()) {
        Item& item = Find(name);
        if (!HasModule(session.application, name) && IsOpen(item)) {
            item.verdict = Verdict::Missing;
            any = true;
        }
    }
    return any;
}

/// A run that loads these plugins alone.
Job PluginPhase::LoadJob(const Names& names, const std::string& listName) {
    Names expected = Order({names.begin(), names.end()});
    const std::string list = session.WriteList(listName, OthersThan(names));
    const std::string time = session.GenerousTime(expected.size());
    return {
        PluginArguments(time, list, EMPTY_VALUE), Watch(ItemKind::Plugin, std::move(expected)), {}};
}

void PluginPhase::AddTrial(Suspect suspect) {
    Job job = LoadJob({suspect.name}, "alone-" + std::to_string(lists++) + ".list");
    job.alone = NeedsQuiet(suspect.seen);
    job.done = [this, suspect = std::move(suspect)](const Run& run) { TakeTrial(run, suspect); };
    queue.push_back(std::move(job));
}

void PluginPhase::TakeTrial(const Run& run, Suspect suspect) {
    const auto& attempts = run.GetWatch().Attempts();
    const Names& arguments = run.Facts().arguments;
    if (const auto attempt = attempts.find(suspect.name); attempt != attempts.end()) {
        suspect.alone = attempt->second;
        Decide(suspect, arguments);
    } else {
        RequireFirst(suspect.repeated, run);
        AddTrial(suspect);
    }
}

void PluginPhase::Decide(const Suspect& suspect, const Names& arguments) {
    Item& item = Find(suspect.name);
    Judge(item, suspect.seen, suspect.alone);
    if (item.verdict == Verdict::Unsteady) {
        unsteady.push_back(suspect);
    } else if (IsBad(item.verdict)) {
        session.SetRepro(item, arguments);
    }
    if (EndsRuns(item.verdict)) {
        session.Tell(item);
    }
}

void PluginPhase::DecideRest() {
    for (Item& item : items) {
        const auto attempt = seen.find(item.name);
        if (IsOpen(item) && attempt != seen.end()) {
            Judge(item, attempt->second, attempt->second);
        }
    }
}

void PluginPhase::FindCompany(const Suspect& suspect) {
    Names company = suspect.before;
    const bool hung = suspect.seen.verdict == Verdict::Hung;
    const bool again = !hung && !company.empty() && IsBadAmong(company, suspect);
    if (again) {
        company = Shrink(std::move(company), suspect);
    }
    if (!company.empty() && WasBlamedFalsely(suspect, company)) {
        return;
    }
    Item& item = Find(suspect.name);
    if (again) {
        SetCompany(item, company);
    }
    company.push_back(item.name);
    const std::string list = "company-" + std::to_string(lists++) + ".list";
    session.SetRepro(item, LoadJob(company, list).arguments);
}

Names PluginPhase::Shrink(Names company, const Suspect& suspect) {
    int left = MAX_COMPANY_RUNS - 1;
    const Clock::time_point until = Clock::now() + MAX_COMPANY_TIME;
    return Minimize(
        std::move(company), [&](const Names& part) { return IsBadAmong(part, suspect); },
        [&] { return left-- > 0 && Clock::now() < until; });
}

bool PluginPhase::IsBadAmong(const Names& names, const Suspect& suspect) {
    Names all = names;
    all.push_back(suspect.name);
    const auto attempts = runs.RunNow(LoadJob(all, COMPANY_LIST)).Attempts();
    const auto attempt = attempts.find(suspect.name);
    return attempt != attempts.end() && IsSame(attempt->second, suspect.seen);
}

void PluginPhase::SetCompany(Item& item, const Names& company) {
    item.company = company;
    for (const std::string& name : company) {
        if (company.size() <= MOST_SPOILERS) {
            Find(name).spoils.push_back(item.name);
        }
    }
}

/// A module can write records about others. Who is told of in a run that doesn't load it was blamed
/// by such records: its trial counts, and whoever was bad in that run comes under suspicion.
bool PluginPhase::WasBlamedFalsely(const Suspect& suspect, const Names& company) {
    const Watch control = runs.RunNow(LoadJob(company, COMPANY_LIST));
    if (!Contains(control.Strays(), suspect.name)) {
        return false;
    }
    Judge(Find(suspect.name), suspect.alone, suspect.alone);
    session.Note("Records that blamed " + suspect.name + " came from another module, out of " +
                 JoinOrNothing(company));
    for (const auto& [name, attempt] : control.Attempts()) {
        if (IsBad(attempt.verdict) && IsOpen(Find(name))) {
            AddTrial({name, attempt, {}, {}});
        }
    }
    return true;
}

}  // namespace Tarnex::Parent
