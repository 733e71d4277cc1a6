#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace Tarnex::Assay {

enum class Colour { None, Red, Green, Yellow };

/// Where people read along. A terminal has a last line that is rewritten; anything else gets lines
/// alone.
class Terminal {
public:
    /// `quiet`: writes nothing. Heeds NO_COLOR and TERM.
    Terminal(std::FILE* stream, bool quiet);
    ~Terminal() { ClearStatus(); }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Writes a line above the last one. Texts of others are made printable by the caller.
    void Line(std::string_view text = "", Colour colour = Colour::None);

    /// Rewrites the last line, cut at the terminal's width.
    void Status(std::string_view text);
    void ClearStatus();

    /// How many lines fit; 24 if it isn't a terminal.
    std::size_t Rows() const;

private:
    std::FILE* stream;
    bool quiet;
    bool interactive;
    bool coloured;
    bool hasStatus = false;
};

}  // namespace Tarnex::Assay
