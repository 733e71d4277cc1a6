#include "parent/Follower.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/exercise/Tags.h"
#include "core/support/Constants.h"
#include "core/support/Text.h"

namespace Tarnex::Parent {
namespace {

using namespace Core::Utils;  // NOLINT(google-build-using-namespace)
using namespace Exercise;     // NOLINT(google-build-using-namespace)

/// The text of a plugin that the run was told not to load.
constexpr std::string_view LISTED_TEXT = ": \nTest Error\n";
/// The text of a decoder test without input.
constexpr std::string_view NO_INPUT_TEXT = " stream not found";
/// Before the path of a list file that isn't there.
constexpr std::string_view NO_LIST_TEXT = "Can't find path: ";
/// Before the name of a plugin without a file.
constexpr std::string_view NO_PLUGIN_TEXT = "Can't find plugin ";
/// Bytes of what an item wrote itself.
constexpr std::size_t LAST_WORDS = 4000;
constexpr std::size_t MOST_STRAYS = 20;

void KeepLast(std::string& text, std::size_t most) {
    text.erase(0, text.size() - std::min(text.size(), most));
}

}  // namespace

const std::vector<std::string_view>& AllTags() {
    static const std::vector<std::string_view> tags{
        STATISTICS_TAG,     CODECS_TAG,        ERROR_TAG,          WARNING_TAG,
        TEST_CODEC_TAG,     TESTED_CODECS_TAG, PLUGINS_TAG,        LOAD_PLUGIN_NAME_TAG,
        LOADED_PLUGINS_TAG, LIST_MODULE_TAG,   LISTED_MODULES_TAG, EXERCISE_TAG,
        TITLE_TAG,          STEP_TAG,          REMARK_TAG,         EXERCISES_TAG,
        UNAVAILABLE_TAG,    EXERCISED_TAG};
    return tags;
}

void Strays::Add(const std::string& name) {
    if (names.size() < MOST_STRAYS || names.contains(name)) {
        names.insert(name);
    } else {
        ++more;
    }
}

void Strays::Add(const Strays& others) {
    std::ranges::for_each(others.names, [this](const std::string& name) { Add(name); });
    more += others.more;
}

struct Follower::Grammar {
    std::string_view begin;  ///< names the item that is touched next
    std::string_view end;    ///< all were touched
    std::string_view bad;    ///< names an item that failed
    bool isOrdered;          ///< the items come in the order that was asked for
};

const Follower::Grammar& Follower::GrammarOf(Work work) {
    static constexpr std::array<Grammar, 5> GRAMMARS{{
        {LOAD_PLUGIN_NAME_TAG, LOADED_PLUGINS_TAG, PLUGINS_TAG, true},
        {TEST_CODEC_TAG, TESTED_CODECS_TAG, CODECS_TAG, false},
        {LIST_MODULE_TAG, LISTED_MODULES_TAG, {}, true},
        {EXERCISE_TAG, EXERCISED_TAG, EXERCISES_TAG, true},
        {},
    }};
    return GRAMMARS.at(static_cast<std::size_t>(work));
}

Follower::Follower(Work work, Names expected)
    : work(work), expected(std::move(expected)), grammar(&GrammarOf(work)) {
    for (const std::string& name : this->expected) {
        isBegun.emplace(name, false);
    }
}

bool Follower::Take(const Record& record, Clock::time_point now) {
    const bool names =
        record.tag == grammar->begin || record.tag == grammar->bad || record.tag == UNAVAILABLE_TAG;
    if (record.thread != believed) {
        if (names) {
            strays.Add(record.message);
        }
        return false;
    }
    if (record.tag == grammar->begin) {
        return Begin(record.message, now);
    }
    if (record.tag == grammar->bad || record.tag == UNAVAILABLE_TAG) {
        return Report(record.message,
                      record.tag == grammar->bad ? Verdict::Failed : Verdict::Unavailable);
    }
    if (record.tag == grammar->end) {
        return Finish(now);
    }
    closed = closed || (finished && record.tag == STATISTICS_TAG);
    if (record.tag == ERROR_TAG) {
        TakeError(record.message);
        return false;
    }
    return Describe(record);
}

/// True if it is a step of the open item.
bool Follower::Describe(const Record& record) {
    if (record.tag == WARNING_TAG && begun.empty()) {
        TakeWarning(record.message);
    }
    if (work != Work::Exercise || open.empty()) {
        return false;
    }
    if (record.tag == REMARK_TAG) {
        remarks.push_back(record.message);
    } else if (record.tag == TITLE_TAG) {
        title = record.message;
    } else if (record.tag == STEP_TAG) {
        step = record.message;
        words.clear();
        return true;
    }
    return false;
}

/// Before anything was touched, nobody but Assayer writes.
void Follower::TakeWarning(const std::string& message) {
    if (message.starts_with(NO_LIST_TEXT)) {
        unreadList = message.substr(NO_LIST_TEXT.size());
    } else if (message.starts_with(NO_PLUGIN_TEXT)) {
        absent.insert(message.substr(NO_PLUGIN_TEXT.size()));
    }
}

/// The next item that an ordered run comes to; empty at its end.
std::string Follower::Next() {
    while (place < expected.size() && absent.contains(expected[place])) {
        ++place;
    }
    return place < expected.size() ? expected[place] : std::string();
}

void Follower::TakeText(std::string_view bytes) {
    if (open.empty()) {
        return;
    }
    words += bytes;
    if (words.size() > 2 * LAST_WORDS) {
        KeepLast(words, LAST_WORDS);
    }
}

void Follower::End(Attempt attempt, Clock::time_point now) {
    culprit = open;
    KeepLast(words, LAST_WORDS);
    if (!step.empty()) {
        attempt.text += step + "\n";
    }
    attempt.text += TrimAll(words);
    CloseOpen(std::move(attempt), now);
}

/// It is noticed a little later, when the next items are open or all is over.
void Follower::EndUnwatched(Clock::time_point now) {
    unwatched = true;
    finished = false;
    if (open.empty() && !begun.empty()) {
        open = begun.back();
    }
    End(KilledKeeper(), now);
}

Names Follower::Untouched() const {
    Names names = expected;
    std::erase_if(names, [&](const std::string& name) { return attempts.contains(name); });
    return names;
}

/// The order of the tests is the media core's, which may ask the machine. Everywhere else nobody
/// can tell of any item but the next one.
bool Follower::Begin(const std::string& name, Clock::time_point now) {
    const auto known = isBegun.find(name);
    const bool isNext =
        known != isBegun.end() && (grammar->isOrdered ? Next() == name : !known->second);
    if (finished || !isNext) {
        strays.Add(name);
        return false;
    }
    CloseOpen(OutcomeOfOpen(), now);
    known->second = true;
    ++place;
    begun.push_back(name);
    open = name;
    openSince = now;
    return true;
}

/// A plugin's name comes before its text, any other after it.
bool Follower::Report(const std::string& name, Verdict as) {
    if (work == Work::LoadPlugins) {
        reported = name;
    } else if (open.empty() || name != open) {
        strays.Add(name);
    } else {
        return std::exchange(outcome, as) == Verdict::Good;
    }
    return false;
}

void Follower::TakeError(const std::string& message) {
    const std::string name = std::exchange(reported, {});
    if (work == Work::LoadPlugins && message.ends_with(LISTED_TEXT)) {
        return;
    }
    lastError = message;
    if (!name.empty() && name != open) {
        strays.Add(name);
    } else if (outcome == Verdict::Good) {
        outcome = name.empty() ? Verdict::Good : Verdict::Failed;
        text = message;
    }
}

/// What was asked for is over when all was touched, whoever says so earlier.
bool Follower::Finish(Clock::time_point now) {
    if (finished || (grammar->isOrdered && !Next().empty())) {
        return false;
    }
    CloseOpen(OutcomeOfOpen(), now);
    finished = true;
    return true;
}

/// A plugin that fails at one of its places isn't good at the other.
void Follower::CloseOpen(Attempt attempt, Clock::time_point now) {
    const auto known = attempts.find(open);
    attempt.seconds = ToFPSeconds(std::max(now, openSince) - openSince);
    attempt.title = title;
    attempt.remarks.insert(attempt.remarks.end(), remarks.begin(), remarks.end());
    if (!open.empty() &&
        (known == attempts.end() || !IsBad(known->second.verdict) || EndsRuns(attempt.verdict))) {
        attempts.insert_or_assign(open, std::move(attempt));
    }
    for (std::string* part : {&open, &text, &reported, &title, &step, &words}) {
        part->clear();
    }
    remarks.clear();
    outcome = Verdict::Good;
}

Attempt Follower::OutcomeOfOpen() const {
    const bool isBad = outcome == Verdict::Failed || (!open.empty() && reported == open);
    if (isBad && work == Work::TestCodecs && text.ends_with(NO_INPUT_TEXT) &&
        open.starts_with("Decoder.")) {
        return {.verdict = Verdict::NoMaterial, .reason = FirstLine(text), .text = text};
    }
    if (isBad) {
        return MakeFailure(text);
    }
    if (outcome == Verdict::Unavailable) {
        return {.verdict = outcome, .reason = FirstLine(text), .text = text};
    }
    if (work != Work::LoadPlugins || text.empty()) {
        return {};
    }
    // Assayer says who failed, but for those that may fail.
    if (Contains(WHITE_PLUGIN_LIST_FF, open)) {
        return {.verdict = Verdict::Tolerated, .reason = FirstLine(text), .text = text};
    }
    return {.remarks = {"It wrote an ERROR record itself: " + FirstLine(text)}};
}

}  // namespace Tarnex::Parent
