#pragma once

#include <set>
#include <string>
#include <vector>

namespace Tarnex::Reports {

/// What the dynamic loader would load for a module.
struct LoaderTrace {
    std::set<std::string> files;  ///< as the loader names them
    std::set<std::string> names;  ///< by which it looked for them, also those that it didn't find
};

/// Asks the loader in a process for each, several side by side; nothing of the modules is run. A
/// file that isn't for the loader has an empty trace. In the order of `modules`.
std::vector<LoaderTrace> TraceLoader(const std::vector<std::string>& modules);

}  // namespace Tarnex::Reports
