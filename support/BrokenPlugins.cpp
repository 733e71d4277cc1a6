#include "core/support/BrokenPlugins.h"

#include <utility>

#include "core/support/Text.h"

namespace Tarnex::Core::Utils {

BrokenPlugins::BrokenPlugins(std::vector<std::string> names) : names(std::move(names)) {}

BrokenPlugins::BrokenPlugins(const std::string& joined) : names(SplitNames(joined)) {}

void BrokenPlugins::Add(const std::string& joined) {
    for (std::string& name : SplitNames(joined)) {
        names.push_back(std::move(name));
    }
}

}  // namespace Tarnex::Core::Utils
