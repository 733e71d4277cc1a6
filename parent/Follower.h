#pragma once

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "parent/Records.h"
#include "parent/Verdicts.h"

namespace Tarnex::Parent {

using Clock = std::chrono::steady_clock;
using Names = std::vector<std::string>;

/// What a process is asked to do, and thereby which records it writes.
enum class Work {
    LoadPlugins,
    TestCodecs,
    ListModules,  ///< the plugins inside modules
    Exercise,     ///< use plugins
    Other         ///< it names nothing
};

/// The tags that any work may write.
const std::vector<std::string_view>& AllTags();

/// Names from records that nobody should have written there: a few, and how many more.
struct Strays {
    std::set<std::string> names;
    std::size_t more = 0;

    void Add(const std::string& name);
    void Add(const Strays& others);
};

/// Follows the items of a run by its records. Believes no more of them than it has to: a module
/// shares the process with Assayer and can write records about others.
class Follower {
public:
    /// `expected`: what the run should touch. Codec tests in any order, each once; all else in this
    /// order, a plugin of two factories twice.
    explicit Follower(Work work = Work::Other, Names expected = {});

    /// Only records of this thread are believed: the main thread of the process that was started.
    void Believe(long thread) { believed = thread; }

    /// True if it brings the run forward.
    bool Take(const Record& record, Clock::time_point now);

    /// What isn't a record. It may tell why the open item ends the run.
    void TakeText(std::string_view bytes);

    /// The run is over; the attempt is that of the open item.
    void End(Attempt attempt, Clock::time_point now);

    /// The same for a run that lost its keeper: whatever was touched may have done that.
    void EndUnwatched(Clock::time_point now);

    Names Untouched() const;

    Work work;
    Names expected;
    std::map<std::string, Attempt> attempts;  ///< of all that is closed
    Names begun;
    std::string open;
    Clock::time_point openSince;
    std::string culprit;           ///< was open when the run ended
    bool unwatched = false;        ///< the run lost its keeper
    bool finished = false;         ///< the phase's closing record came where it belongs
    bool closed = false;           ///< the run's last record came after that
    std::string lastError;         ///< of the whole run, if nothing was begun
    std::set<std::string> absent;  ///< plugins that the run passed over: it found no file
    std::string unreadList;        ///< a list file that the run was given and couldn't find
    Strays strays;                 ///< named by records at a wrong place: somebody else wrote them

private:
    struct Grammar;
    static const Grammar& GrammarOf(Work work);

    bool Begin(const std::string& name, Clock::time_point now);
    bool Report(const std::string& name, Verdict as);
    void TakeError(const std::string& message);
    bool Describe(const Record& record);
    void TakeWarning(const std::string& message);
    std::string Next();
    bool Finish(Clock::time_point now);
    void CloseOpen(Attempt attempt, Clock::time_point now);
    Attempt OutcomeOfOpen() const;

    const Grammar* grammar;
    std::unordered_map<std::string, bool> isBegun;  // by expected name
    std::size_t place = 0;                          // in what is expected, of an ordered run
    long believed = 0;
    std::string reported;             // a plugin whose text is to come
    Verdict outcome = Verdict::Good;  // of the open item
    std::string text;                 // of the open item
    std::string title, step;          // of the open item
    Names remarks;                    // of the open item
    std::string words;                // that it wrote itself, the last of them
};

}  // namespace Tarnex::Parent
