#pragma once

#include <deque>
#include <map>
#include <set>

#include "parent/Installation.h"
#include "parent/Runs.h"

namespace Tarnex::Parent {

/// Loads all plugins, finds who fails or ends a run, and tries those again by themselves.
class PluginPhase {
public:
    /// Decides those of the chosen items that are `NotReached`. `items` are all plugins.
    PluginPhase(Session& session, Runs& runs, const std::vector<PluginPlace>& order,
                const std::set<std::string>& chosen, std::vector<Item>& items);

    /// What is good or tolerated isn't told to the listener yet: what comes later can show more of
    /// it. Throws as `Runs::Drain` does.
    void Check();

private:
    /// Was bad in company, and waits for its trial or has had it.
    struct Suspect {
        std::string name;
        Attempt seen;
        Names before;  // loaded before it in that run
        Attempt alone;
        bool repeated = false;
    };

    Item& Find(const std::string& name);
    bool IsOpen(const Item& item) const;
    std::set<std::string> Loadable() const;
    Names Order(const std::set<std::string>& names) const;
    Names OthersThan(const Names& names) const;
    Names Behind(const std::set<std::string>& wanted) const;

    Job LoopJob();
    void TakeLoopRun(const Run& run);
    void TakeAttempts(const Watch& watch);
    bool MarkVanished(const Watch& watch);
    Job LoadJob(const Names& names, const std::string& listName);
    void AddTrial(Suspect suspect);
    void TakeTrial(const Run& run, Suspect suspect);
    void Decide(const Suspect& suspect, const Names& arguments);
    void DecideRest();

    void FindCompany(const Suspect& suspect);
    Names Shrink(Names company, const Suspect& suspect);
    bool IsBadAmong(const Names& names, const Suspect& suspect);
    void SetCompany(Item& item, const Names& company);
    bool WasBlamedFalsely(const Suspect& suspect, const Names& company);

    Session& session;
    Runs& runs;
    const std::vector<PluginPlace>& order;
    const std::set<std::string>& chosen;
    std::vector<Item>& items;
    std::map<std::string, Attempt> seen;  // in the loop
    std::set<std::string> culprits;
    std::string behind;
    bool repeated = false;
    std::deque<Job> queue;
    std::vector<Suspect> unsteady;
    std::size_t lists = 0;
};

}  // namespace Tarnex::Parent
