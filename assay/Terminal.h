#pragma once

#include <sys/ioctl.h>

#include <cstdio>
#include <string_view>

#include "assay/Report.h"

namespace Tarnex::Assay {

enum class Colour { None, Red = 31, Green = 32, Yellow = 33 };

/// Where people read along. A terminal has a last line that is rewritten; anything else gets lines
/// alone. Texts are made printable here.
class Terminal {
public:
    static constexpr std::size_t LONGEST_LINE = 300;

    /// `quiet`: writes nothing. Heeds NO_COLOR and TERM.
    Terminal(std::FILE* stream, bool quiet);
    ~Terminal() { ClearStatus(); }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Writes a line above the last one.
    void Line(std::string_view text, Colour colour = Colour::None);

    /// Rewrites the last line, cut at the terminal's width.
    void Status(std::string_view text);

    /// A line for the item if it is bad, with reason and company, in at most `columns` characters.
    void Item(const Parent::Item& item, std::size_t columns = LONGEST_LINE);

    /// Counts, as many bad items as fit a screen with the command that shows each again, and what
    /// hindered the check.
    void Summary(const Report& report);

private:
    void ClearStatus();
    void BadItems(const Report& report);
    winsize GetSize() const;

    std::FILE* stream;
    bool quiet;
    bool interactive;
    bool coloured;
    bool hasStatus = false;
};

}  // namespace Tarnex::Assay
