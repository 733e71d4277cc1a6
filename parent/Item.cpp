#include "parent/Item.h"

#include <algorithm>
#include <array>

namespace Tarnex::Parent {
namespace {

/// In the order of the enumeration.
constexpr std::array<std::string_view, 11> NAMES = {
    "not-reached", "good", "failed",   "tolerated", "no-material", "crashed",
    "ended",       "hung", "unsteady", "missing",   "unavailable"};

}  // namespace

std::string_view ToString(Verdict verdict) {
    return NAMES.at(static_cast<std::size_t>(verdict));
}

std::span<const std::string_view> GetVerdictNames() {
    return NAMES;
}

std::optional<Verdict> ParseVerdict(std::string_view name) {
    const auto found = std::find(NAMES.begin(), NAMES.end(), name);
    if (found == NAMES.end()) {
        return std::nullopt;
    }
    return static_cast<Verdict>(found - NAMES.begin());
}

bool IsBad(Verdict verdict) {
    return verdict == Verdict::Failed || verdict == Verdict::Unsteady || EndsRuns(verdict);
}

bool EndsRuns(Verdict verdict) {
    return verdict == Verdict::Crashed || verdict == Verdict::Ended || verdict == Verdict::Hung;
}

}  // namespace Tarnex::Parent
