#pragma once

#include "parent/PluginRuns.h"

namespace Tarnex::Parent {

/// Looks for the few of these plugins that make a run over them end badly after its last record:
/// a crash in an exit handler, say. None if it doesn't happen again, or takes a crowd. Throws as
/// `Runs::Drain` does.
Names FindSpoilersOfEnd(Session& session, const PluginRuns& loads, const Names& names);

/// The same for those that kill or stop the keeper of their run. It is noticed a little later, so
/// the plugin that is open then may be innocent.
Names FindKeeperKillers(Session& session, const PluginRuns& loads, const Names& names);

}  // namespace Tarnex::Parent
