#pragma once

#include <sys/ioctl.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace Tarnex::Platform {

enum class Colour { None, Red = 31, Green = 32, Yellow = 33 };

/// Where people read along. A terminal has a last line that is rewritten; anything else gets lines
/// alone. Texts are made printable here, and paths below the user's home begin with "~". What can't
/// be written is lost without a word: ask `HasFailed` at the end.
class Terminal {
public:
    /// `quiet`: writes nothing. Heeds NO_COLOR and TERM.
    Terminal(std::FILE* stream, bool quiet);
    ~Terminal() { ClearStatus(); }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Writes a line above the last one. `coloured`: how many bytes of it have the colour.
    void Line(std::string_view text, Colour colour = Colour::None,
              std::size_t coloured = std::string_view::npos);

    /// A line that stands only until something better is known.
    void PassingLine(std::string_view text, Colour colour, std::size_t coloured);

    /// Removes the passing lines since the last other one, as far as they are on the screen. False
    /// if they stay because this is no terminal.
    bool RemovePassing();

    /// Rewrites the last line, cut at the terminal's width.
    void Status(std::string_view text);

    /// In characters; the usual size if the system tells none.
    winsize GetSize() const;

    /// Whether something couldn't be written.
    bool HasFailed() const { return failed; }

    /// Whether the last line can be rewritten.
    const bool interactive;

private:
    void ClearStatus();
    void Write(const std::string& text);

    std::FILE* stream;
    bool quiet;
    bool coloured;
    bool hasStatus = false;
    bool failed = false;
    std::size_t passingRows = 0;
};

/// How many columns of a terminal the text takes, which must be printable.
std::size_t CountColumns(std::string_view text);

/// Takes the place of standard descriptors that are closed, so that no file that is opened later
/// gets their numbers. Reading from and writing to them fails as before.
void OccupyStandardDescriptors();

/// Flushes standard output and error. An empty text, or which of them couldn't be written, and why.
std::string FlushStandardStreams();

}  // namespace Tarnex::Platform
