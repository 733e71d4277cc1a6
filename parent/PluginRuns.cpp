#include "parent/PluginRuns.h"

#include <unordered_set>

namespace Tarnex::Parent {

Job PluginRuns::MakeJob(const Names& names, const std::string& listName,
                        const std::string& culprit) const {
    const std::unordered_set<std::string> wanted(names.begin(), names.end());
    Names expected, others;
    bool begun = culprit.empty();
    for (const auto& [name, factory] : session.order) {
        if (!wanted.contains(name)) {
            others.push_back(name);
        } else if (begun) {
            expected.push_back(name);
        }
        begun = begun || name == culprit;
    }
    return session.MakeJob(Work::LoadPlugins, std::move(expected),
                           {{6, session.WriteList(listName, others)}, {8, culprit}});
}

}  // namespace Tarnex::Parent
