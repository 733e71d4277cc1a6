#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "core/support/Text.h"
#include "parent/Check.h"
#include "parent/Records.h"

namespace Tarnex::Parent {

using Clock = std::chrono::steady_clock;
using Names = std::vector<std::string>;
using Core::Utils::Contains;

/// How one attempt at an item went.
struct Attempt {
    Verdict verdict = Verdict::Good;  ///< never NotReached, Unsteady or Missing
    std::string reason;
    std::string text;
    double seconds = 0;
};

/// Of the item that was open when a run ended.
Attempt FromEnd(const RunEnd& end);

/// Of an item that closed standard error, so that the run had to be ended. A short run ends by
/// itself before that is noticed, with a status like any other.
Attempt ClosedError();

/// Of an item that was reported with this text.
Attempt MakeFailure(const std::string& text);

/// Whether two attempts had the same outcome: signals are all the same.
bool IsSame(const Attempt& left, const Attempt& right);

/// Whether its trial wants nothing beside it: what runs beside it could be the reason.
bool NeedsQuiet(const Attempt& attempt);

/// Sets the verdict and what belongs to it, from what was seen in company and in the trial.
void Judge(Item& item, const Attempt& seen, const Attempt& alone);

/// Follows the items of a run by its records. Believes no more of them than it has to: a module
/// shares the process with Assayer and can write records about others.
struct Watch {
    /// `expected`: what the run should touch. Plugins in this order, a plugin of two factories
    /// twice; codec tests in any order, each once.
    explicit Watch(ItemKind kind = ItemKind::Plugin, Names expected = {})
        : kind(kind), expected(std::move(expected)) {}

    ItemKind kind;
    Names expected;
    std::map<std::string, Attempt> attempts;  ///< of all that is closed
    Names begun;
    std::string open;
    Clock::time_point openSince;
    std::string culprit;        ///< was open when the run ended
    bool finished = false;      ///< the phase's closing record came where it belongs
    bool failedItself = false;  ///< the last record was an error of the whole run
    std::string lastError;
    Names strays;  ///< named by records at a wrong place: somebody else wrote them

    /// True if it brings the run forward.
    bool Take(const Record& record, Clock::time_point now);

    /// The run is over; the attempt is that of the open item.
    void End(const Attempt& attempt, Clock::time_point now);

    Names Untouched() const;

private:
    bool Begin(const std::string& name, Clock::time_point now);
    bool Report(const std::string& name);
    void TakeText(const std::string& message);
    bool Finish(Clock::time_point now);
    void CloseOpen(Attempt attempt, Clock::time_point now);
    Attempt OutcomeOfOpen() const;

    std::string reported;  // a plugin whose text is to come
    bool failed = false;   // the open item was reported
    std::string text;      // of the open item
    std::string_view lastTag;
};

}  // namespace Tarnex::Parent
