#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tarnex::Platform {

/// The text on one line, fit for a terminal, in at most `columns` characters (what is cut ends in
/// "…"): what would steer the terminal, turns the direction of writing or isn't UTF-8 becomes
/// U+FFFD, line ends and tabs become blanks.
std::string MakePrintable(std::string_view text, std::size_t columns = std::string::npos);

/// A command line that a POSIX shell reads as these arguments.
std::string QuoteForShell(const std::vector<std::string>& arguments);

}  // namespace Tarnex::Platform
