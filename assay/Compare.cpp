#include "assay/Compare.h"

#include <map>
#include <utility>

namespace Tarnex::Assay {
namespace {

using Parent::EndsRuns;
using Parent::IsBad;
using Parent::Item;
using Parent::Verdict;

using Key = std::pair<Parent::ItemKind, std::string>;

Key GetKey(const Item& item) {
    return {item.kind, item.name};
}

/// A module whose file went is as good as one that isn't listed any more.
bool IsThere(const Item* item) {
    return item != nullptr && item->verdict != Verdict::Missing;
}

bool GotWorse(const Change& change) {
    const auto& [before, after] = change;
    if (!IsThere(after)) {
        return IsThere(before) && before->verdict == Verdict::Good;
    }
    const bool wasBad = before != nullptr && IsBad(before->verdict);
    const bool endedRuns = before != nullptr && EndsRuns(before->verdict);
    return (IsBad(after->verdict) && !wasBad) || (EndsRuns(after->verdict) && !endedRuns);
}

bool GotBetter(const Change& change) {
    const auto& [before, after] = change;
    if (!IsThere(before) || !IsThere(after) || after->verdict == Verdict::NotReached) {
        return false;
    }
    return (IsBad(before->verdict) && !IsBad(after->verdict)) ||
           (EndsRuns(before->verdict) && !EndsRuns(after->verdict));
}

/// Null: nothing changed.
std::vector<Change>* Choose(Differences& differences, const Change& change) {
    if (GotWorse(change)) {
        return &differences.worse;
    }
    if (GotBetter(change)) {
        return &differences.better;
    }
    if (IsThere(change.before) != IsThere(change.after)) {
        return IsThere(change.after) ? &differences.appeared : &differences.went;
    }
    const bool isSame = !IsThere(change.after) || change.before->verdict == change.after->verdict;
    return isSame ? nullptr : &differences.others;
}

void Sort(Differences& differences, const Change& change) {
    if (auto* list = Choose(differences, change)) {
        list->push_back(change);
    }
}

std::string DescribeState(const Item* item) {
    if (item == nullptr) {
        return "not there";
    }
    std::string text(ToString(item->verdict));
    return item->reason.empty() ? text : text + " (" + item->reason + ")";
}

}  // namespace

Differences Compare(const Report& before, const Report& after) {
    std::map<Key, const Item*> old;
    for (const Item& item : before.items) {
        old.emplace(GetKey(item), &item);
    }
    Differences differences;
    for (const Item& item : after.items) {
        const auto found = old.find(GetKey(item));
        Sort(differences, {found == old.end() ? nullptr : found->second, &item});
        if (found != old.end()) {
            old.erase(found);
        }
    }
    for (const auto& [key, item] : old) {
        Sort(differences, {item, nullptr});
    }
    return differences;
}

std::string Describe(const Change& change) {
    const auto& [before, after] = change;
    const bool otherFile = before != nullptr && after != nullptr && before->file && after->file &&
                           *before->file != *after->file;
    return DescribeState(before) + " -> " + DescribeState(after) +
           (otherFile ? "; its file changed" : "");
}

}  // namespace Tarnex::Assay
