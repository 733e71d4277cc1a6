#include "parent/Company.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "parent/Minimize.h"

namespace Tarnex::Parent {
namespace {

constexpr int MOST_RUNS = 64;
constexpr std::chrono::minutes MOST_TIME{2};
/// For all searches of a check: where hundreds are unsteady, the cause is the crowd.
constexpr std::chrono::minutes MOST_TIME_OF_ALL{10};
/// What only a crowd does, none of it does: it uses something up.
constexpr std::size_t MOST_SPOILERS = 3;
/// With and without its company, before anybody is named: a plugin may crash by chance.
constexpr int CONFIRMATIONS = 3;

constexpr auto GetName = [](const auto& entry) { return entry.first; };

bool HasSame(const std::map<std::string, Attempt>& attempts, const std::string& name,
             const Attempt& seen) {
    const auto attempt = attempts.find(name);
    return attempt != attempts.end() && IsSame(attempt->second, seen);
}

/// In the run in which it was bad.
bool WasLoadedAfter(const Victim& victim, const Names& company) {
    const Names before = victim.GetCompany();
    const std::unordered_set<std::string_view> names(before.begin(), before.end());
    return std::ranges::all_of(company, [&](const auto& name) { return names.contains(name); });
}

}  // namespace

CompanySearch::CompanySearch(Session& session, const PluginRuns& loads, const ItemsByName& items)
    : session(session), loads(loads), items(items) {}

std::vector<Victim> CompanySearch::Find(std::vector<Victim> victims) {
    while (!victims.empty()) {
        const Victim victim = std::move(victims.front());
        victims.erase(victims.begin());
        const Clock::time_point start = Clock::now();
        FindFor(victim);
        if (const Names& company = items.at(victim.suspect.name)->company; !company.empty()) {
            Share(company, victims);
        }
        spent += Clock::now() - start;
    }
    return std::exchange(suspects, {});
}

/// Not of a hang: each question may take as long as an item may.
void CompanySearch::FindFor(const Victim& victim) {
    const Suspect& suspect = victim.suspect;
    const bool isAsked = suspect.seen.verdict != Verdict::Hung && HasTime();
    const Names known = isAsked ? FindKnown(victim) : Names();
    const Names all = known.empty() ? victim.GetCompany() : known;
    const bool again = isAsked && !all.empty() && (!known.empty() || IsBadAmong(all, suspect));
    const Names company = again && known.empty() ? Shrink(all, suspect) : all;
    if (!company.empty() && HasTime() && WasBlamedFalsely(suspect, company)) {
        return;
    }
    SetRepro(suspect, company);
    if (again && IsSure(company, suspect)) {
        Set(suspect, company);
    }
}

/// A company that was found for another victim.
Names CompanySearch::FindKnown(const Victim& victim) {
    const auto company = std::ranges::find_if(found, [&](const Names& names) {
        return WasLoadedAfter(victim, names) && IsBadAmong(names, victim.suspect);
    });
    return company == found.end() ? Names() : *company;
}

Names CompanySearch::Shrink(const Names& company, const Suspect& suspect) {
    int left = MOST_RUNS - 1;
    const Clock::time_point until = Clock::now() + MOST_TIME;
    return Minimize(
        company, [&](const Names& part) { return IsBadAmong(part, suspect); },
        [&] { return left-- > 0 && Clock::now() < until; });
}

bool CompanySearch::IsBadAmong(const Names& names, const Suspect& suspect) {
    Names all = names;
    all.push_back(suspect.name);
    return HasSame(Load(all, "company.list"), suspect.name, suspect.seen);
}

bool CompanySearch::IsSure(const Names& company, const Suspect& suspect) {
    for (int i = 0; i < CONFIRMATIONS; ++i) {
        if (!IsBadAmong(company, suspect) || IsBadAmong({}, suspect)) {
            return false;
        }
    }
    return true;
}

/// A module can write records about others. A plugin that has records in a run that doesn't load
/// it was blamed falsely: its trial counts, and whatever was bad in that run is suspected.
bool CompanySearch::WasBlamedFalsely(const Suspect& suspect, const Names& company) {
    const Attempts attempts = Load(company, "company.list");
    if (!strays.names.contains(suspect.name) && strays.more == 0) {
        return false;
    }
    Judge(*items.at(suspect.name), *suspect.alone, *suspect.alone);
    session.Note("Records that blamed " + suspect.name + " came from another module, of " +
                 Join(company));
    for (const auto& [name, attempt] : attempts) {
        if (IsBad(attempt.verdict) && items.at(name)->verdict == Verdict::NotReached) {
            suspects.push_back({{name, attempt}, std::make_shared<Names>(), 0});
        }
    }
    return true;
}

/// Runs over all victims of the company at once. Not for those that end runs: each would hide the
/// next.
void CompanySearch::Share(const Names& company, std::vector<Victim>& others) {
    std::map<std::string, const Victim*> sharing;
    for (const Victim& victim : others) {
        if (!EndsRuns(victim.suspect.seen.verdict) && WasLoadedAfter(victim, company)) {
            sharing[victim.suspect.name] = &victim;
        }
    }
    for (int i = 0; i < CONFIRMATIONS && !sharing.empty(); ++i) {
        Names without;
        std::ranges::transform(sharing, std::back_inserter(without), GetName);
        Names with = company;
        with.insert(with.end(), without.begin(), without.end());
        const Attempts bad = Load(with, "company.list");
        const Attempts good = Load(without, "company.list");
        std::erase_if(sharing, [&](const auto& entry) {
            const Attempt& seen = entry.second->suspect.seen;
            return !HasSame(bad, entry.first, seen) || HasSame(good, entry.first, seen);
        });
    }
    for (const auto& [name, victim] : sharing) {
        SetRepro(victim->suspect, company);
        Set(victim->suspect, company);
    }
    std::erase_if(others, [&](const Victim& victim) {
        return !items.at(victim.suspect.name)->company.empty();
    });
}

void CompanySearch::Set(const Suspect& suspect, const Names& company) {
    items.at(suspect.name)->company = company;
    found.insert(company);
    if (company.size() > MOST_SPOILERS) {
        return;
    }
    for (const std::string& name : company) {
        items.at(name)->spoils.push_back(suspect.name);
    }
}

void CompanySearch::SetRepro(const Suspect& suspect, Names company) {
    company.push_back(suspect.name);
    items.at(suspect.name)->repro =
        ToCommand(loads.MakeJob(company, session.NextFile("company", "list")));
}

CompanySearch::Attempts CompanySearch::Load(const Names& names, const std::string& list) {
    Attempts attempts;
    session.runs.RunAll({loads.MakeJob(names, list)}, [&](const Run& run) {
        attempts = run.job.follower.attempts;
        strays = run.job.follower.strays;
    });
    return attempts;
}

bool CompanySearch::HasTime() const {
    return spent < MOST_TIME_OF_ALL;
}

}  // namespace Tarnex::Parent
