#include "report/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::Verdict;

struct Meaning {
    Verdict verdict;
    std::string_view text;
};

/// The worst first.
constexpr std::array<Meaning, 11> MEANINGS{{
    {Verdict::Crashed, "ended its process by a signal, twice"},
    {Verdict::Ended, "ended its process by an exit status of its own, twice the same"},
    {Verdict::Hung, "took longer than the item time, twice"},
    {Verdict::Unsteady, "is bad among others but not alone, or in different ways"},
    {Verdict::Failed, "reported a failure, alone too"},
    {Verdict::NotReached, "the check ended before it"},
    {Verdict::Missing, "is listed, but there is no file"},
    {Verdict::Tolerated, "failed, but is optional: the check counts as passed"},
    {Verdict::Unavailable, "can't work on this machine, and nobody is to blame"},
    {Verdict::NoMaterial, "a decoder without a sample file: not tested, not broken"},
    {Verdict::Good, "was touched, and nothing was wrong"},
}};

const Meaning* FindMeaning(Verdict verdict) {
    return std::ranges::find(MEANINGS, verdict, &Meaning::verdict);
}

std::string_view WithoutPrefix(std::string_view text, std::string_view prefix) {
    return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

/// The last line that says anything.
std::string GetLastLine(std::string_view text) {
    const std::string trimmed = boost::trim_copy(std::string(text));
    return boost::trim_copy(trimmed.substr(trimmed.rfind('\n') + 1));
}

/// Without the beginning, up to the colon, if the text begins with it.
std::string_view Behead(std::string_view text, std::string_view beginning) {
    const std::size_t end = text.find(": ", beginning.size());
    const bool begins = !beginning.empty() && text.starts_with(beginning);
    return begins && end != std::string_view::npos ? text.substr(end + 2) : text;
}

/// A failure's text begins with what failed, because it must stand alone. Beside the item's name
/// that says it again.
std::string WithoutOwnNames(const Item& item) {
    std::string_view text = item.reason;
    text = Behead(text, "Plugin " + item.name + ", module ");
    text = Behead(text, "can't be loaded");
    text = Behead(text, item.file ? item.file->path : "");
    text = Behead(text, item.coder.empty() ? "" : item.coder + " ");
    return std::string(text);
}

}  // namespace

std::string NameImplementation(std::string_view implementation) {
    if (implementation == "MEDIA_FOUNDATION_IMPL") {
        return "GStreamer";
    }
    if (implementation == "FFMPEG_IMPL") {
        return "FFmpeg";
    }
    if (implementation == "NVDEC_IMPL") {
        return "NVIDIA";
    }
    const bool hasEnding = implementation.ends_with("_IMPL");
    return std::string(implementation.substr(0, implementation.size() - (hasEnding ? 5 : 0)));
}

std::string NameCodec(std::string_view codec) {
    return std::string(WithoutPrefix(codec, "CODEC_ID_"));
}

std::string NameItem(const Item& item) {
    return item.kind == Parent::ItemKind::Codec
               ? fmt::format("{} {} {}", NameImplementation(item.implementation),
                             NameCodec(item.codec), boost::to_lower_copy(item.coder))
               : item.name;
}

std::string_view ExplainVerdict(Verdict verdict) {
    return FindMeaning(verdict)->text;
}

std::string DescribeReason(const Item& item) {
    if (!Parent::EndsRuns(item.verdict)) {
        return WithoutOwnNames(item);
    }
    const bool isNumber =
        !item.reason.empty() && item.reason.find_first_not_of("0123456789.") == std::string::npos;
    const std::string end = !isNumber ? item.reason
                            : item.verdict == Verdict::Hung
                                ? "no progress for " + item.reason + " s"
                                : "exit status " + item.reason;
    const std::string words = GetLastLine(item.text);
    return words.empty() ? end : fmt::format("{}, after \"{}\"", end, words);
}

std::vector<Verdict> GetVerdicts() {
    std::vector<Verdict> verdicts;
    std::ranges::transform(MEANINGS, std::back_inserter(verdicts), &Meaning::verdict);
    return verdicts;
}

int GetRank(Verdict verdict) {
    return static_cast<int>(FindMeaning(verdict) - MEANINGS.data());
}

}  // namespace Tarnex::Reports
