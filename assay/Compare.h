#pragma once

#include <string>
#include <vector>

#include "assay/Report.h"

namespace Tarnex::Assay {

enum class Trend {
    Worse,     ///< bad now and not before, ends runs now and not before, or good and gone
    Better,    ///< not bad any more, or doesn't end runs any more
    Appeared,  ///< and isn't bad
    Gone,      ///< and wasn't good
    Other      ///< another verdict, neither worse nor better
};

/// What an item became.
struct Change {
    Trend trend;
    std::string text;  ///< "amp: good -> crashed (SIGSEGV); its file changed"
};

/// What differs, in the order of the later report; what is gone comes last.
std::vector<Change> Compare(const Report& before, const Report& after);

}  // namespace Tarnex::Assay
