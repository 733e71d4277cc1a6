#pragma once

#include "parent/Installation.h"
#include "parent/Runs.h"

namespace Tarnex::Parent {

/// Asks the helper program what codecs the media core offers, and finds the plugins without which
/// the core starts if it doesn't start with them.
class CoreStart {
public:
    CoreStart(Session& session, Runs& runs, const std::vector<PluginPlace>& order,
              std::vector<Item>& plugins);

    /// Throws `PhaseFailure` if the core doesn't start without all that it could be, or if the
    /// helper's output isn't a list.
    Listing List();

    /// The plugins that the core has to start without.
    const Names& LeftOut() const { return leftOut; }

private:
    struct Start {
        bool works;
        Attempt attempt;
        std::string output;
    };

    Start Try(Names without);
    Start TryOnly(const Names& names);
    void FindCulprits(const Start& first);
    void Blame(const std::string& name, const Attempt& seen);

    Session& session;
    Runs& runs;
    std::vector<Item>& plugins;
    Names candidates;
    Names leftOut;
};

}  // namespace Tarnex::Parent
