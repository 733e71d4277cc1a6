#pragma once

#include "parent/Session.h"

namespace Tarnex::Parent {

// The parts of a check, in their order. They decide items that are `NotReached`, and throw as
// `Runs::Drain` does.

/// Loads the wanted plugins, finds who fails or ends a run, and tries those again by themselves.
/// Tells the listener of those that end runs: what comes later can show more of the others.
void CheckPlugins(Session& session, std::vector<Item>& plugins);

/// Asks the helper program which plugins are inside the good modules of foreign interfaces, and
/// uses each of them. `exercises` gets an item for each; what is in `carried` isn't asked or done
/// again.
void CheckExercises(Session& session, const std::vector<Item>& plugins, const Carried& carried,
                    std::vector<Item>& exercises);

/// Asks the helper program what the media core offers. Finds the plugins without which the core
/// starts if it doesn't start with them. `leftOut`: what it is and has to be started without.
Listing ListCodecs(Session& session, std::vector<Item>& plugins, Names& leftOut);

/// Asks once, within the time of an item.
std::optional<Listing> AskForCodecs(Session& session);

/// Tests codecs in batches, several runs at a time, and looks at each culprit and each failure
/// again. `plugins` learn whose tests they spoil.
void CheckCodecs(Session& session, const Names& leftOut, std::vector<Item>& plugins,
                 std::vector<Item>& codecs);

}  // namespace Tarnex::Parent
