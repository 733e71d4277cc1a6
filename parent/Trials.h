#pragma once

#include "parent/Runs.h"

namespace Tarnex::Parent {

/// An item that was bad in company, and how it did by itself.
struct Suspect {
    std::string name;
    Attempt seen;
    std::optional<Attempt> alone{};  ///< none if the trial didn't come to it
    Names trial{};                   ///< the command of the trial
};

/// Gives the run that touches one item by itself.
using MakeTrial = std::function<Job(const std::string&)>;

/// Tries each suspect again, side by side. Those of which a hang, or an end that may come from
/// outside, comes out differently are tried once more with nothing beside them, and that counts.
/// `decide` is called for each as soon as its outcome is sure. Throws as `Runs::Drain` does.
void TrySuspects(Runs& runs, std::vector<Suspect>& suspects, const MakeTrial& makeTrial,
                 const std::function<void(Suspect&)>& decide);

}  // namespace Tarnex::Parent
