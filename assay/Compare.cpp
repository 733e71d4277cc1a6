#include "assay/Compare.h"

#include <fmt/format.h>

#include <map>
#include <optional>

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;

/// An item before and after; null where it wasn't there.
struct Pair {
    const Item* before = nullptr;
    const Item* after = nullptr;
};

/// A module whose file is gone is as good as one that isn't listed.
bool IsThere(const Item* item) {
    return item != nullptr && item->verdict != Verdict::Missing;
}

bool Had(const Item* item, bool (*property)(Verdict)) {
    return IsThere(item) && property(item->verdict);
}

bool Gained(const Item* before, const Item* after) {
    return (Had(after, Parent::IsBad) && !Had(before, Parent::IsBad)) ||
           (Had(after, Parent::EndsRuns) && !Had(before, Parent::EndsRuns));
}

std::optional<Trend> Classify(const Item* before, const Item* after) {
    if (Gained(before, after)) {
        return Trend::Worse;
    }
    if (!IsThere(before) || !IsThere(after)) {
        const bool wasGood = before != nullptr && before->verdict == Verdict::Good;
        return IsThere(after)     ? std::optional(Trend::Appeared)
               : !IsThere(before) ? std::nullopt
               : wasGood          ? std::optional(Trend::Worse)
                                  : Trend::Gone;
    }
    if (before->verdict == after->verdict) {
        return std::nullopt;
    }
    const bool isKnown = after->verdict != Verdict::NotReached;
    return isKnown && Gained(after, before) ? Trend::Better : Trend::Other;
}

std::string Describe(const Item* item) {
    if (item == nullptr) {
        return "not there";
    }
    const std::string reason = item->reason.empty() ? "" : fmt::format(" ({})", item->reason);
    return fmt::format("{}{}", ToString(item->verdict), reason);
}

std::string Describe(const Pair& pair) {
    const auto& [before, after] = pair;
    const bool otherFile = before && after && before->file && before->file != after->file;
    return fmt::format("{}: {} -> {}{}", (after ? after : before)->name, Describe(before),
                       Describe(after), otherFile ? "; its file changed" : "");
}

}  // namespace

std::vector<Change> Compare(const Report& before, const Report& after) {
    std::map<std::pair<Parent::ItemKind, std::string>, std::size_t> places;
    std::vector<Pair> pairs;
    const auto add = [&](const Item& item, const Item* Pair::*side) {
        const auto [place, isNew] = places.try_emplace({item.kind, item.name}, pairs.size());
        if (isNew) {
            pairs.emplace_back();
        }
        pairs[place->second].*side = &item;
    };
    for (const Item& item : after.items) {
        add(item, &Pair::after);
    }
    for (const Item& item : before.items) {
        add(item, &Pair::before);
    }
    std::vector<Change> changes;
    for (const Pair& pair : pairs) {
        if (const auto trend = Classify(pair.before, pair.after)) {
            changes.push_back({*trend, Describe(pair)});
        }
    }
    return changes;
}

}  // namespace Tarnex::Assay
