#pragma once

#include "parent/Session.h"

namespace Tarnex::Parent {

/// Makes runs that load some plugins and no others.
class PluginRuns {
public:
    explicit PluginRuns(const Session& session) : session(session) {}

    /// Loads these, at all their places after the culprit's first. The list of all others gets this
    /// file name.
    Job MakeJob(const Names& names, const std::string& listName,
                const std::string& culprit = {}) const;

private:
    const Session& session;
};

}  // namespace Tarnex::Parent
