#pragma once

#include <string>
#include <vector>

#include "assay/Report.h"

namespace Tarnex::Assay {

/// What an item became; null where it wasn't there.
struct Change {
    const Parent::Item* before;
    const Parent::Item* after;
};

/// What differs between two reports, in the order of the later one. The items stay theirs.
struct Differences {
    std::vector<Change> worse;     ///< bad now and not before, ends runs now, or a good one went
    std::vector<Change> better;    ///< not bad any more, or doesn't end runs any more
    std::vector<Change> appeared;  ///< and isn't bad
    std::vector<Change> went;      ///< and wasn't good
    std::vector<Change> others;    ///< another verdict, neither worse nor better
};

Differences Compare(const Report& before, const Report& after);

/// "good -> crashed (SIGSEGV); its file changed"
std::string Describe(const Change& change);

}  // namespace Tarnex::Assay
