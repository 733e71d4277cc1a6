#pragma once

#include <string>
#include <vector>

#include "parent/Check.h"

namespace Tarnex::Parent {

/// How one attempt at an item went.
struct Attempt {
    Verdict verdict = Verdict::Good;  ///< never NotReached, Unsteady or Missing
    std::string reason{};
    std::string text{};
    double seconds = 0;
    std::vector<std::string> remarks{};
    std::string title{};  ///< of an exercise
};

/// The attempt at the item that was open when a run ended.
Attempt FromEnd(const RunEnd& end);

/// "SIGSEGV", "exit status 17" or "no end within 20 s".
std::string DescribeEnd(const RunEnd& end);

/// The attempt at an item that closed standard error, so that the run had to be ended. A short run
/// ends by itself before that is noticed, with a status like any other.
Attempt ClosedError();

/// The attempt at an item that killed or stopped the process that watched its run.
Attempt KilledKeeper();

/// The attempt at an item that was open alone when the machine stopped.
Attempt StoppedMachine();

/// The attempt at an item that was reported with this text.
Attempt MakeFailure(const std::string& text);

/// The first line of what the innermost exception in `text` said, else of the whole.
std::string FirstLine(std::string text);

/// Whether two attempts had the same outcome: signals are all the same.
bool IsSame(const Attempt& left, const Attempt& right);

/// Whether what ran beside the attempt may have been the reason.
bool NeedsQuiet(const Attempt& attempt);

/// Sets the verdict and what belongs to it, from what was seen in company and in the trial.
void Judge(Item& item, const Attempt& seen, const Attempt& alone);

}  // namespace Tarnex::Parent
