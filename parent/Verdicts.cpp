#include "parent/Verdicts.h"

#include <fmt/chrono.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

#include "core/support/Text.h"

namespace Tarnex::Parent {
namespace {

constexpr char CLOSED_ERROR[] = "standard error closed";
constexpr char KILLED_KEEPER[] = "killed or stopped what watched it";

/// What a run ends with that came to its end. An item with it was open because the records stopped:
/// it closed standard error, or something silenced the log. In company, what comes later decides
/// how such a run ends.
bool IsSilent(const Attempt& attempt) {
    constexpr std::array<const char*, 6> ENDS{CLOSED_ERROR, "0", "7", "8", "9", "10"};
    return attempt.verdict == Verdict::Ended && std::ranges::count(ENDS, attempt.reason) > 0;
}

/// UTC, ISO 8601, to the millisecond.
std::string GetTime() {
    using std::chrono::system_clock;
    const auto now = std::chrono::floor<std::chrono::milliseconds>(system_clock::now());
    const auto fraction = now.time_since_epoch() % std::chrono::seconds(1);
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", fmt::gmtime(system_clock::to_time_t(now)),
                       fraction.count());
}

}  // namespace

std::string FirstLine(std::string text) {
    constexpr std::string_view MARK = "what:";
    const std::size_t mark = text.rfind(MARK);
    text.erase(0, mark == text.npos ? 0 : mark + MARK.size());
    Core::Utils::TrimAll(text);
    text = text.substr(0, text.find('\n'));
    return Core::Utils::TrimAll(text);
}

Attempt FromEnd(const RunEnd& end) {
    if (end.signal) {
        return {.verdict = Verdict::Crashed, .reason = *end.signal};
    }
    if (end.deadline) {
        return {.verdict = Verdict::Hung, .reason = std::to_string(std::llround(*end.deadline))};
    }
    Attempt attempt{.verdict = Verdict::Ended, .reason = std::to_string(end.status.value())};
    if (IsSilent(attempt)) {
        attempt.text =
            "The records stopped here, but Assayer went on to its end: standard error "
            "was closed, or lost what was written, or the log was silenced.\n";
    }
    return attempt;
}

std::string DescribeEnd(const RunEnd& end) {
    const std::string reason = FromEnd(end).reason;
    return end.signal     ? reason
           : end.deadline ? "no end within " + reason + " s"
                          : "exit status " + reason;
}

Attempt ClosedError() {
    return {.verdict = Verdict::Ended, .reason = CLOSED_ERROR};
}

Attempt KilledKeeper() {
    return {.verdict = Verdict::Ended, .reason = KILLED_KEEPER};
}

Attempt StoppedMachine() {
    return {.verdict = Verdict::Crashed,
            .reason = "the machine stopped",
            .text =
                "The machine stopped while nothing but this was being checked. A check without "
                "--known and --only-changed tries it again.\n"};
}

Attempt MakeFailure(const std::string& text) {
    return {.verdict = Verdict::Failed, .reason = FirstLine(text), .text = text};
}

bool IsSame(const Attempt& left, const Attempt& right) {
    return left.verdict == right.verdict &&
           (left.verdict != Verdict::Ended || left.reason == right.reason ||
            left.reason == CLOSED_ERROR || right.reason == CLOSED_ERROR);
}

bool NeedsQuiet(const Attempt& attempt) {
    return attempt.verdict == Verdict::Hung || attempt.reason == "SIGKILL";
}

void Judge(Item& item, const Attempt& seen, const Attempt& alone) {
    item.checked = GetTime();
    const bool steady = IsSame(seen, alone) || (EndsRuns(seen.verdict) && IsSilent(alone));
    const Attempt& told = steady || !IsBad(seen.verdict) ? alone : seen;
    item.verdict = steady ? alone.verdict : Verdict::Unsteady;
    item.reason = told.reason;
    item.text = told.text;
    item.remarks = alone.remarks;
    item.title = alone.title.empty() ? seen.title : alone.title;
    item.seconds = alone.seconds;
}

}  // namespace Tarnex::Parent
