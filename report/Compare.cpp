#include "report/Compare.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

#include "report/Scopes.h"

namespace Tarnex::Reports {
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

/// It worked, and now nobody can say that it does.
bool IsUntested(const Item& item) {
    return item.verdict == Verdict::Unavailable || item.verdict == Verdict::NoMaterial;
}

bool Gained(const Item* before, const Item* after) {
    return (Had(after, Parent::IsBad) && !Had(before, Parent::IsBad)) ||
           (Had(after, Parent::EndsRuns) && !Had(before, Parent::EndsRuns));
}

std::optional<Trend> Classify(const Item* before, const Item* after) {
    if (Gained(before, after)) {
        return after->accepted ? Trend::Accepted : Trend::Worse;
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
    if (before->verdict == Verdict::Good && IsUntested(*after)) {
        return Trend::Worse;
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

/// A new time alone is no change if the build is the same.
bool IsSameFile(const Parent::FileFacts& before, const Parent::FileFacts& after) {
    return before == after || (before.path == after.path && before.size == after.size &&
                               !before.buildId.empty() && before.buildId == after.buildId);
}

/// The file of the module that the item is or is in; null if it has none.
const Parent::FileFacts* GetFile(const Report& report, const Item* item) {
    if (item != nullptr && item->kind == Parent::ItemKind::Exercise && !item->file) {
        Item module;
        module.name = item->plugin;
        item = FindItem(report, module);
    }
    return item != nullptr && item->file ? &*item->file : nullptr;
}

/// Tells where two reports differ.
class Comparer {
public:
    Comparer(const Report& before, const Report& after)
        : before(before), after(after), otherMachine(!CompareMachines(before, after).empty()) {}

    void Add(const Item* then, const Item* now) {
        const Item& item = now == nullptr ? *then : *now;
        const auto trend = Classify(then, now);
        if (trend && IsAbout(before, item) && IsAbout(after, item)) {
            changes.push_back({*trend, fmt::format("{}: {} -> {}{}", item.name, Describe(then),
                                                   Describe(now), GetCause(then, now, *trend))});
        }
    }

    std::vector<Change> changes;

private:
    std::string GetCause(const Item* then, const Item* now, Trend trend) const {
        const Parent::FileFacts* old = GetFile(before, then);
        const Parent::FileFacts* file = GetFile(after, now);
        if (then != nullptr && now != nullptr && !then->package.empty() && !now->package.empty() &&
            then->package != now->package) {
            return fmt::format("; its package changed: {} -> {}", then->package, now->package);
        }
        if (old != nullptr && file != nullptr && !IsSameFile(*old, *file)) {
            return now->package.empty() || now->package == then->package
                       ? "; its file changed"
                       : fmt::format("; its file changed, now of {}", now->package);
        }
        return trend != Trend::Worse || then == nullptr || now == nullptr ? ""
               : otherMachine ? "; only the machine changed"
                              : "; neither its file nor the machine changed";
    }

    const Report& before;
    const Report& after;
    const bool otherMachine;
};

}  // namespace

std::vector<Change> Compare(const Report& before, const Report& after) {
    Comparer comparer(before, after);
    for (const Item& item : after.items) {
        comparer.Add(FindItem(before, item), &item);
    }
    for (const Item& item : before.items) {
        if (FindItem(after, item) == nullptr) {
            comparer.Add(&item, nullptr);
        }
    }
    return std::move(comparer.changes);
}

}  // namespace Tarnex::Reports
