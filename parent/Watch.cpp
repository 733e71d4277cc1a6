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

/// A short run ends by itself before that is noticed, with a status like any other.
constexpr char CLOSED_ERROR[] = "standard error closed";

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The first line of what an exception said, else of the whole.
std::string FirstLine(const std::string& text) {
    constexpr std::string_view MARK = "what:";
    const std::size_t mark = text.find(MARK);
    std::string line = mark == std::string::npos ? text : text.substr(mark + MARK.size());
    line.erase(0, line.find_first_not_of(" \t\r\n"));
    line = line.substr(0, line.find('\n'));
    return TrimAll(line);
}

struct EndToAttempt {
    Attempt operator()(const ExitStatus& end) const {
        return {Verdict::Ended, std::to_string(end.status), {}, 0};
    }
    Attempt operator()(const KilledBy& end) const { return {Verdict::Crashed, end.signal, {}, 0}; }
    Attempt operator()(const OverDeadline& end) const {
        return {Verdict::Hung, std::to_string(std::llround(end.seconds)), {}, 0};
    }
};

}  // namespace

Attempt FromEnd(const RunEnd& end) {
    return std::visit(EndToAttempt{}, end);
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

void Judge(Item& item, const Attempt& seen, const Attempt& alone) {
    const bool steady = IsSame(seen, alone);
    const Attempt& told = steady ? alone : seen;
    item.verdict = steady ? alone.verdict : Verdict::Unsteady;
    item.reason = told.reason;
    item.text = told.text;
    item.seconds = alone.seconds;
}

bool Watch::Take(const Record& record, Clock::time_point now) {
    const bool isPlugin = kind == ItemKind::Plugin;
    endsWithError = false;
    if (record.tag == (isPlugin ? LOAD_PLUGIN_NAME_TAG : TEST_CODEC_TAG)) {
        return Begin(record.message, now);
    }
    if (record.tag == (isPlugin ? PLUGINS_TAG : CODECS_TAG)) {
        return Find(record.message);
    }
    if (record.tag == ERROR_TAG) {
        TakeText(record.message);
        return false;
    }
    if (record.tag == (isPlugin ? LOADED_PLUGINS_TAG : TESTED_CODECS_TAG)) {
        return Finish(now);
    }
    return record.tag == STATISTICS_TAG && finished;
}

void Watch::End(Attempt attempt, Clock::time_point now) {
    if (!open.empty()) {
        culprit = open;
        Add(std::move(attempt), now);
    }
}

std::vector<std::string> Watch::Untouched() const {
    std::vector<std::string> names;
    std::copy_if(expected.begin(), expected.end(), std::back_inserter(names),
                 [&](const std::string& name) { return !attempts.contains(name); });
    return names;
}

bool Watch::Begin(const std::string& name, Clock::time_point now) {
    if (finished || !IsExpected(name)) {
        strays.push_back(name);
        return false;
    }
    CloseOpen(now);
    begun.push_back(name);
    open = name;
    openSince = now;
    return true;
}

/// The plugin order is fixed, so that nobody can tell of another plugin but the next one. The order
/// of the tests is the core's, which may ask the machine.
bool Watch::IsExpected(const std::string& name) const {
    if (kind == ItemKind::Plugin) {
        return begun.size() < expected.size() && expected[begun.size()] == name;
    }
    return Contains(expected, name) && !Contains(begun, name);
}

bool Watch::Find(const std::string& name) {
    found = kind == ItemKind::Plugin ? name : std::string();
    if (kind == ItemKind::Codec && name == open && !open.empty()) {
        return std::exchange(failed, true) == false;
    }
    if (kind == ItemKind::Codec) {
        strays.push_back(name);
    }
    return false;
}

void Watch::TakeText(const std::string& message) {
    const bool isListed = kind == ItemKind::Plugin && message.ends_with(LISTED_TEXT);
    endsWithError = !isListed;
    if (isListed) {
        found.clear();
        return;
    }
    lastError = message;
    if (kind == ItemKind::Plugin) {
        TakePluginText(message);
    } else if (!failed) {
        text = message;
    }
}

void Watch::TakePluginText(const std::string& message) {
    if (!found.empty() && found != open) {
        strays.push_back(found);
    } else if (!failed) {
        failed = !found.empty();
        text = message;
    }
    found.clear();
}

/// A plugin phase is over when all were touched, whoever says so earlier.
bool Watch::Finish(Clock::time_point now) {
    if (finished || (kind == ItemKind::Plugin && begun.size() < expected.size())) {
        return false;
    }
    CloseOpen(now);
    finished = true;
    return true;
}

void Watch::CloseOpen(Clock::time_point now) {
    if (!open.empty()) {
        Add(OutcomeOfOpen(), now);
    }
    text.clear();
    found.clear();
    failed = false;
}

Attempt Watch::OutcomeOfOpen() const {
    if (kind == ItemKind::Codec && failed && text.ends_with(NO_INPUT_TEXT) &&
        open.starts_with("Decoder.")) {
        return {Verdict::NoMaterial, FirstLine(text), text, 0};
    }
    if (failed || found == open) {
        return MakeFailure(text);
    }
    if (kind == ItemKind::Plugin && !text.empty()) {
        return {Verdict::Tolerated, FirstLine(text), text, 0};
    }
    return {};
}

/// A plugin that fails at one of its places isn't good at the other.
void Watch::Add(Attempt attempt, Clock::time_point now) {
    attempt.seconds = ToFPSeconds(std::max(now, openSince) - openSince);
    const auto known = attempts.find(open);
    if (known == attempts.end() || !IsBad(known->second.verdict) || EndsRuns(attempt.verdict)) {
        attempts.insert_or_assign(open, std::move(attempt));
    }
    open.clear();
}

}  // namespace Tarnex::Parent
