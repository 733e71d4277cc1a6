#pragma once

#include <memory>
#include <set>
#include <unordered_map>

#include "parent/PluginRuns.h"
#include "parent/Trials.h"

namespace Tarnex::Parent {

using ItemsByName = std::unordered_map<std::string, Item*>;

/// A plugin that was bad in company.
struct Victim {
    Suspect suspect;
    std::shared_ptr<const Names> run;  ///< what was loaded in the run in which it was bad
    std::size_t place = 0;             ///< its own place in that

    Names GetCompany() const {
        return {run->begin(), run->begin() + static_cast<std::ptrdiff_t>(place)};
    }
};

/// Finds in whose company unsteady plugins are bad. All searches of a check share one budget of
/// time.
class CompanySearch {
public:
    CompanySearch(Session& session, const PluginRuns& loads, const ItemsByName& items);

    /// Sets the company of the victims, and whom their company spoils. Victims of one run share a
    /// search: what harms one probably harms the others. Gives plugins that came under suspicion:
    /// their records blamed a victim falsely. Throws as `Runs::Drain` does.
    std::vector<Victim> Find(std::vector<Victim> victims);

private:
    using Attempts = std::map<std::string, Attempt>;

    void FindFor(const Victim& victim);
    Names FindKnown(const Victim& victim);
    bool IsBadAmong(const Names& names, const Suspect& suspect);
    bool IsSure(const Names& company, const Suspect& suspect);
    Names Shrink(const Names& company, const Suspect& suspect);
    bool WasBlamedFalsely(const Suspect& suspect, const Names& company);
    void Share(const Names& company, std::vector<Victim>& others);
    void Set(const Suspect& suspect, const Names& company);
    void SetRepro(const Suspect& suspect, Names company);
    Attempts Load(const Names& names, const std::string& list);
    bool HasTime() const;

    Session& session;
    const PluginRuns& loads;
    const ItemsByName& items;
    Clock::duration spent{};
    std::set<Names> found;  // companies
    std::vector<Victim> suspects;
    Strays strays;  // of the last run
};

}  // namespace Tarnex::Parent
