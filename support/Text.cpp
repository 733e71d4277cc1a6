#include "core/support/Text.h"

#include <sstream>
#include <vector>

#include "support/Split.h"

namespace Tarnex::Core::Utils {

std::string& TrimAll(std::string& text) {
    constexpr char BLANKS[] = " \t\r\n";
    text.erase(text.find_last_not_of(BLANKS) + 1);
    text.erase(0, text.find_first_not_of(BLANKS));
    return text;
}

std::vector<std::string> SplitNames(const std::string& joined) {
    std::vector<std::string> names;
    std::istringstream stream(joined);
    for (std::string name; std::getline(stream, name, ',');) {
        if (!TrimAll(name).empty()) {
            names.push_back(name);
        }
    }
    return names;
}

}  // namespace Tarnex::Core::Utils
