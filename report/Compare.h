#pragma once

#include <string>
#include <vector>

#include "report/Report.h"

namespace Tarnex::Reports {

enum class Trend {
    Worse,     ///< bad now and not before, ends runs now and not before, or good and not any more
    Better,    ///< not bad any more, or doesn't end runs any more
    Appeared,  ///< and isn't bad
    Gone,      ///< and wasn't good
    Other,     ///< another verdict, neither worse nor better
    Accepted   ///< worse, but the later verdict is accepted
};

/// What an item became.
struct Change {
    Trend trend;
    std::string text;  ///< "amp: good -> crashed (SIGSEGV); its file changed"
};

/// What differs, in the order of the later report; what is gone comes last. Only of items that both
/// checks were about.
std::vector<Change> Compare(const Report& before, const Report& after);

/// What differs on the machines: kernel, graphics drivers and cards, variables, libraries, packages
/// of bad modules; a line each ("kernel: 6.1 -> 6.2").
std::vector<std::string> CompareMachines(const Report& before, const Report& after);

/// Whether both checks were about the same items of the same installation.
bool HaveSameScope(const Report& one, const Report& other);

}  // namespace Tarnex::Reports
