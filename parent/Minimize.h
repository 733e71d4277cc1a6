#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace Tarnex::Parent {

/// Delta debugging: looks for a small part of `names` for which `holds` is true, as it must be for
/// the whole; the order is kept. Where it isn't interrupted, no single name can be taken out of the
/// result. `mayGoOn` is asked before each question.
inline std::vector<std::string> Minimize(
    std::vector<std::string> names,
    const std::function<bool(const std::vector<std::string>&)>& holds,
    const std::function<bool()>& mayGoOn) {
    std::size_t parts = 2;
    const auto shrinkTo = [&](const std::vector<std::string>& part, std::size_t nextParts) {
        const bool smaller = mayGoOn() && holds(part);
        if (smaller) {
            names = part;
            parts = nextParts;
        }
        return smaller;
    };
    const auto tryPart = [&](std::size_t part) {
        const auto first = names.begin() + static_cast<std::ptrdiff_t>(names.size() * part / parts);
        const auto last =
            names.begin() + static_cast<std::ptrdiff_t>(names.size() * (part + 1) / parts);
        std::vector<std::string> rest(names.begin(), first);
        rest.insert(rest.end(), last, names.end());
        return shrinkTo({first, last}, 2) || (parts > 2 && shrinkTo(rest, parts - 1));
    };
    while (names.size() > 1 && mayGoOn()) {
        bool smaller = false;
        for (std::size_t part = 0; part < parts && !smaller; ++part) {
            smaller = tryPart(part);
        }
        if (!smaller && parts == names.size()) {
            break;
        }
        parts = std::min(smaller ? parts : 2 * parts, names.size());
    }
    return names;
}

}  // namespace Tarnex::Parent
