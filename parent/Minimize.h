#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
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
    const auto tryPart = [&](std::size_t part) {
        const auto at = [&](std::size_t i) {
            return names.begin() + static_cast<std::ptrdiff_t>(names.size() * i / parts);
        };
        std::vector<std::string> rest(names.begin(), at(part));
        rest.insert(rest.end(), at(part + 1), names.end());
        std::vector<std::string> only(at(part), at(part + 1));
        if (mayGoOn() && holds(only)) {
            names = std::move(only);
            parts = 2;
            return true;
        }
        if (parts > 2 && mayGoOn() && holds(rest)) {
            names = std::move(rest);
            --parts;
            return true;
        }
        return false;
    };
    while (names.size() > 1 && mayGoOn()) {
        bool smaller = false;
        for (std::size_t part = 0; part < parts && !smaller; ++part) {
            smaller = tryPart(part);
        }
        if (!smaller && parts >= names.size()) {
            break;
        }
        parts = smaller ? parts : 2 * parts;
        parts = std::min(parts, names.size());
    }
    return names;
}

}  // namespace Tarnex::Parent
