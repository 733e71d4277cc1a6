#include "parent/Watch.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/support/Constants.h"
#include "core/support/Text.h"

namespace Tarnex::Parent {
namespace {

using namespace Core::Utils;  // NOLINT(google-build-using-namespace)

/// The text of a plugin that the run was told not to load.
constexpr std::string_view LISTED_TEXT = ": \nTest Error\n";
/// The text of a decoder test without input.
constexpr std::string_view NO_INPUT_TEXT = " stream not found";
constexpr char CLOSED_ERROR[] = "standard error closed";

/// The first line of what the innermost exception said, else of the whole.
std::string FirstLine(std::string text) {
    constexpr std::string_view MARK = "what:";
    const std::size_t mark = text.rfind(MARK);
    text.erase(0, mark == text.npos ? 0 : mark + MARK.size());
    TrimAll(text);
    text = text.substr(0, text.find('\n'));
    return TrimAll(text);
}

}  // namespace

Attempt FromEnd(const RunEnd& end) {
    if (end.signal) {
        return {Verdict::Crashed, *end.signal, {}, 0};
    }
    if (end.deadline) {
        return {Verdict::Hung, std::to_string(std::llround(*end.deadline)), {}, 0};
    }
    return {Verdict::Ended, std::to_string(end.status.value()), {}, 0};
}

Attempt ClosedError() {
    return {Verdict::Ended, CLOSED_ERROR, {}, 0};
}

Attempt MakeFailure(const std::string& text) {
    return {Verdict::Failed, FirstLine(text), text, 0};
}

bool IsSame(const Attempt& left, const Attempt& right) {
    return left.verdict == right.verdict &&
           (left.verdict != Verdict::Ended || left.reason == right.reason ||
            left.reason == CLOSED_ERROR || right.reason == CLOSED_ERROR);
}

bool NeedsQuiet(const Attempt& attempt) {
    return attempt.verdict == Verdict::Hung || attempt.reason == "SIGKILL";
}

/// With a status of a run that came to its end: perhaps it did, unseen, because the item closed
/// standard error. In company, what comes later decides how such a run ends.
static bool IsSilent(const Attempt& attempt) {
    static const Names ENDS{CLOSED_ERROR, "0", "7", "8", "9", "10"};
    return attempt.verdict == Verdict::Ended && Contains(ENDS, attempt.reason);
}

void Judge(Item& item, const Attempt& seen, const Attempt& alone) {
    const bool steady = IsSame(seen, alone) || (EndsRuns(seen.verdict) && IsSilent(alone));
    const Attempt& told = steady ? alone : seen;
    item.verdict = steady ? alone.verdict : Verdict::Unsteady;
    item.reason = told.reason;
    item.text = told.text;
    item.seconds = alone.seconds;
}

bool Watch::Take(const Record& record, Clock::time_point now) {
    if (record.tag == WARNING_TAG) {
        return false;
    }
    const bool isPlugin = kind == ItemKind::Plugin;
    const std::string_view before = std::exchange(lastTag, record.tag);
    failedItself = record.tag == ERROR_TAG && (before.empty() || before == LOADED_PLUGINS_TAG ||
                                               before == TESTED_CODECS_TAG || before == CODECS_TAG);
    if (record.tag == (isPlugin ? LOAD_PLUGIN_NAME_TAG : TEST_CODEC_TAG)) {
        return Begin(record.message, now);
    }
    if (record.tag == (isPlugin ? PLUGINS_TAG : CODECS_TAG)) {
        return Report(record.message);
    }
    if (record.tag == (isPlugin ? LOADED_PLUGINS_TAG : TESTED_CODECS_TAG)) {
        return Finish(now);
    }
    if (record.tag == ERROR_TAG) {
        TakeText(record.message);
    }
    return record.tag == STATISTICS_TAG && finished;
}

void Watch::End(const Attempt& attempt, Clock::time_point now) {
    culprit = open;
    CloseOpen(attempt, now);
}

Names Watch::Untouched() const {
    Names names = expected;
    std::erase_if(names, [&](const std::string& name) { return attempts.contains(name); });
    return names;
}

/// The plugin order is fixed, so that nobody can tell of any plugin but the next one. The order of
/// the tests is the core's, which may ask the machine.
bool Watch::Begin(const std::string& name, Clock::time_point now) {
    const bool isNext = kind == ItemKind::Plugin
                            ? begun.size() < expected.size() && expected[begun.size()] == name
                            : Contains(expected, name) && !Contains(begun, name);
    if (finished || !isNext) {
        strays.push_back(name);
        return false;
    }
    CloseOpen(OutcomeOfOpen(), now);
    begun.push_back(name);
    open = name;
    openSince = now;
    return true;
}

/// Of a plugin it is told before its text, of a codec after it.
bool Watch::Report(const std::string& name) {
    if (kind == ItemKind::Plugin) {
        reported = name;
    } else if (open.empty() || name != open) {
        strays.push_back(name);
    } else {
        return !std::exchange(failed, true);
    }
    return false;
}

void Watch::TakeText(const std::string& message) {
    const std::string name = std::exchange(reported, {});
    if (kind == ItemKind::Plugin && message.ends_with(LISTED_TEXT)) {
        return;
    }
    lastError = message;
    if (!name.empty() && name != open) {
        strays.push_back(name);
    } else if (!failed) {
        failed = !name.empty();
        text = message;
    }
}

/// A plugin phase is over when all were touched, whoever says so earlier.
bool Watch::Finish(Clock::time_point now) {
    if (finished || (kind == ItemKind::Plugin && begun.size() < expected.size())) {
        return false;
    }
    CloseOpen(OutcomeOfOpen(), now);
    finished = true;
    return true;
}

/// A plugin that fails at one of its places isn't good at the other.
void Watch::CloseOpen(Attempt attempt, Clock::time_point now) {
    const auto known = attempts.find(open);
    attempt.seconds = ToFPSeconds(std::max(now, openSince) - openSince);
    if (!open.empty() &&
        (known == attempts.end() || !IsBad(known->second.verdict) || EndsRuns(attempt.verdict))) {
        attempts.insert_or_assign(open, std::move(attempt));
    }
    open.clear();
    text.clear();
    reported.clear();
    failed = false;
}

Attempt Watch::OutcomeOfOpen() const {
    const bool isBad = failed || (!open.empty() && reported == open);
    if (isBad && kind == ItemKind::Codec && text.ends_with(NO_INPUT_TEXT) &&
        open.starts_with("Decoder.")) {
        return {Verdict::NoMaterial, FirstLine(text), text, 0};
    }
    if (isBad) {
        return MakeFailure(text);
    }
    if (kind == ItemKind::Plugin && !text.empty()) {
        return {Verdict::Tolerated, FirstLine(text), text, 0};
    }
    return {};
}

}  // namespace Tarnex::Parent
