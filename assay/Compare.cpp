#include "assay/Compare.h"

#include <fmt/format.h>

#include <optional>

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;

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

std::string Describe(const Item* before, const Item* after) {
    const bool otherFile = before && after && before->file && before->file != after->file;
    return fmt::format("{}: {} -> {}{}", (after ? after : before)->name, Describe(before),
                       Describe(after), otherFile ? "; its file changed" : "");
}

}  // namespace

std::vector<Change> Compare(const Report& before, const Report& after) {
    std::vector<Change> changes;
    const auto add = [&](const Item* then, const Item* now) {
        if (const auto trend = Classify(then, now)) {
            changes.push_back({*trend, Describe(then, now)});
        }
    };
    for (const Item& item : after.items) {
        add(FindItem(before, item), &item);
    }
    for (const Item& item : before.items) {
        if (FindItem(after, item) == nullptr) {
            add(&item, nullptr);
        }
    }
    return changes;
}

}  // namespace Tarnex::Assay
