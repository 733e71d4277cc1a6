#include "core/support/Text.h"

#include <sstream>

namespace Tarnex::Core::Utils {

std::string& TrimAll(std::string& text) {
    constexpr char BLANKS[] = " \t\r\n";
    text.erase(text.find_last_not_of(BLANKS) + 1);
    text.erase(0, text.find_first_not_of(BLANKS));
    return text;
}

std::vector<std::string> SplitAtCommas(const std::string& joined) {
    std::vector<std::string> pieces;
    std::istringstream stream(joined);
    for (std::string piece; std::getline(stream, piece, ',');) {
        pieces.push_back(TrimAll(piece));
    }
    return pieces;
}

std::vector<std::string> SplitNames(const std::string& joined) {
    std::vector<std::string> names = SplitAtCommas(joined);
    std::erase(names, std::string());
    return names;
}

}  // namespace Tarnex::Core::Utils
