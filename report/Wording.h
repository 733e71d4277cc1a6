#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "parent/Item.h"

namespace Tarnex::Reports {

// What people read in place of the exact names and codes of a report, on the terminal and the page.

/// "FFmpeg" for `FFMPEG_IMPL`; one that has no such name loses its ending "_IMPL".
std::string NameImplementation(std::string_view implementation);

/// "AAC" for `CODEC_ID_AAC`.
std::string NameCodec(std::string_view codec);

/// "FFmpeg AAC decoder"; the exact name of anything but a codec test.
std::string NameItem(const Parent::Item& item);

/// A sentence of the legend, without a full stop: "ended its process by a signal, twice".
std::string_view ExplainVerdict(Parent::Verdict verdict);

/// In words: "SIGSEGV, after "assertion failed"", "no progress for 20 s", "exit status 17". Empty
/// where there is none.
std::string DescribeReason(const Parent::Item& item);

/// All verdicts, the worst first.
std::vector<Parent::Verdict> GetVerdicts();

/// 0 for the worst; what is bad comes before what isn't, `Good` last.
int GetRank(Parent::Verdict verdict);

}  // namespace Tarnex::Reports
