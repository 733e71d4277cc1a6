#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "parent/Check.h"
#include "parent/Records.h"

namespace Tarnex::Parent {

using Clock = std::chrono::steady_clock;

/// How one attempt at an item went.
struct Attempt {
    Verdict verdict = Verdict::Good;  ///< never NotReached, Unsteady or Missing
    std::string reason;
    std::string text;
    double seconds = 0;
};

/// Of the item that was open when a run ended.
Attempt FromEnd(const RunEnd& end);

/// Of an item that closed standard error, so that the run had to be ended.
Attempt ClosedError();

/// Of an item that was reported with this text.
Attempt MakeFailure(const std::string& text);

/// Whether two attempts at an item had the same outcome: signals are all the same.
bool IsSame(const Attempt& left, const Attempt& right);

/// Sets the verdict and what belongs to it, from what was seen in company and in the trial.
void Judge(Item& item, const Attempt& seen, const Attempt& alone);

/// Follows the items of a run by its records. Believes no more of them than it has to: a module
/// shares the process with Assayer and can write records about others.
class Watch {
public:
    Watch() = default;
    /// What the run should touch: plugins in this order, a plugin of two factories twice; codec
    /// tests in any order, each once.
    Watch(ItemKind kind, std::vector<std::string> expected)
        : kind(kind), expected(std::move(expected)) {}

    /// True if it brings the run forward.
    bool Take(const Record& record, Clock::time_point now);

    /// The run is over: whoever is open is the culprit.
    void End(Attempt attempt, Clock::time_point now);

    const std::map<std::string, Attempt>& Attempts() const { return attempts; }
    const std::vector<std::string>& Begun() const { return begun; }
    const std::string& Open() const { return open; }
    Clock::time_point OpenSince() const { return openSince; }
    const std::string& Culprit() const { return culprit; }
    const std::string& LastError() const { return lastError; }

    /// The phase's closing record came where it belongs.
    bool IsFinished() const { return finished; }
    bool EndsWithError() const { return endsWithError; }

    /// What it should touch and didn't.
    std::vector<std::string> Untouched() const;

    /// Names of this run that records told of at a wrong place: somebody else wrote them.
    const std::vector<std::string>& Strays() const { return strays; }

private:
    bool Begin(const std::string& name, Clock::time_point now);
    bool Find(const std::string& name);
    void TakeText(const std::string& text);
    void TakePluginText(const std::string& text);
    bool Finish(Clock::time_point now);
    void CloseOpen(Clock::time_point now);
    Attempt OutcomeOfOpen() const;
    void Add(Attempt attempt, Clock::time_point now);
    bool IsExpected(const std::string& name) const;

    ItemKind kind = ItemKind::Plugin;
    std::vector<std::string> expected;
    std::vector<std::string> begun;
    std::map<std::string, Attempt> attempts;
    std::vector<std::string> strays;
    std::string open;
    Clock::time_point openSince;
    std::string found;    // a plugin that was reported; its text is to come
    bool failed = false;  // the open item was reported
    std::string text;     // of the open item
    std::string lastError;
    std::string culprit;
    bool endsWithError = false;
    bool finished = false;
};

}  // namespace Tarnex::Parent
