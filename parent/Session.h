#pragma once

#include <set>
#include <string>
#include <vector>

#include "core/support/Exception.h"
#include "parent/Check.h"

namespace Tarnex::Parent {

using Names = std::vector<std::string>;

bool Contains(const Names& names, const std::string& name);

/// Joined by commas; the placeholder for nothing if there are none.
std::string JoinOrNothing(const Names& names);

/// No further run can help this phase; the text says why. Its items stay `NotReached`.
class PhaseFailure : public Exception {
    using Exception::Exception;
};

/// The same for the whole check.
class CheckFailure : public Exception {
    using Exception::Exception;
};

/// What the phases of a check have in common.
class Session {
public:
    Session(const CheckOptions& options, CheckListener& listener, CheckResult& result);

    std::string Program() const { return (application / "Assayer").native(); }
    std::string Helper() const { return (application / "assayer-list").native(); }

    /// A pass time that no run reaches, because each item's own limit ends it before.
    std::string GenerousTime(std::size_t items) const;

    /// Writes a plugin list into the folder for lists and gives its path; the placeholder for
    /// nothing if there are no names. Throws `CheckFailure`.
    std::string WriteList(const std::string& name, const Names& plugins);
    /// Removes the lists that no `repro` mentions.
    void RemoveUnusedLists(const std::vector<Item>& items) const;

    /// Arguments of Assayer that show the item again.
    void SetRepro(Item& item, Names arguments) const;

    /// Tells the listener, each item once.
    void Tell(const Item& item);
    void Note(std::string text);

    const CheckOptions& options;
    CheckListener& listener;
    CheckResult& result;
    const std::filesystem::path application;  ///< absolute
    Progress progress{};                      ///< of the finished runs

private:
    std::vector<const Item*> told;
    std::set<std::string> lists;
};

}  // namespace Tarnex::Parent
