#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "parent/Session.h"

namespace Tarnex::Parent {

/// Writes what the helper that uses plugins is asked, as doc/exercise.md describes it.
class ExerciseRequests {
public:
    ExerciseRequests(const Session& session, const std::vector<Item>& plugins);

    /// What is in these modules?
    std::string ToList(const Names& modules) const;
    /// Use these.
    std::string ToUse(const std::vector<const Item*>& exercises) const;

private:
    const Session& session;
    std::unordered_map<std::string, const Item*> byName;
};

/// Fills `exercises` with an item for each plugin inside the good modules of foreign interfaces. A
/// module whose listing fails or ends a run has one item that says so, and what `carried` knows
/// isn't asked. Throws as `Runs::Drain` does.
void ListExercises(Session& session, const ExerciseRequests& requests,
                   const std::vector<Item>& plugins, const Carried& carried,
                   std::vector<Item>& exercises);

}  // namespace Tarnex::Parent
