#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Tarnex::Assay {

/// The text on one line, fit for a terminal: what would steer it, turn the direction of writing or
/// isn't UTF-8 becomes U+FFFD, line ends and tabs become blanks.
std::string MakePrintable(std::string_view text);

/// The text, printable, in at most `columns` characters; what is cut ends in "…".
std::string Shorten(std::string_view text, std::size_t columns);

/// A command line that a POSIX shell reads as these arguments.
std::string QuoteForShell(const std::vector<std::string>& arguments);

std::string Join(const std::vector<std::string>& texts, std::string_view separator);

}  // namespace Tarnex::Assay
