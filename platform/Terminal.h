#pragma once

#include <sys/ioctl.h>

#include <cstdio>
#include <string_view>

namespace Tarnex::Platform {

enum class Colour { None, Red = 31, Green = 32, Yellow = 33 };

/// Where people read along. A terminal has a last line that is rewritten; anything else gets lines
/// alone. Texts are made printable here.
class Terminal {
public:
    /// `quiet`: writes nothing. Heeds NO_COLOR and TERM.
    Terminal(std::FILE* stream, bool quiet);
    ~Terminal() { ClearStatus(); }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Writes a line above the last one.
    void Line(std::string_view text, Colour colour = Colour::None);

    /// Rewrites the last line, cut at the terminal's width.
    void Status(std::string_view text);

    /// In characters; the usual size if the system tells none.
    winsize GetSize() const;

    /// Whether the last line can be rewritten.
    const bool interactive;

private:
    void ClearStatus();

    std::FILE* stream;
    bool quiet;
    bool coloured;
    bool hasStatus = false;
};

}  // namespace Tarnex::Platform
