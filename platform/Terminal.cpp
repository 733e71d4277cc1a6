#include "platform/Terminal.h"

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

#include "platform/Environment.h"
#include "platform/TerminalText.h"

namespace Tarnex::Platform {

Terminal::Terminal(std::FILE* stream, bool quiet)
    : interactive(isatty(fileno(stream)) != 0 && GetEnvironment("TERM") != "dumb"),
      stream(stream),
      quiet(quiet),
      coloured(interactive && !GetEnvironment("NO_COLOR")) {}

void Terminal::Line(std::string_view text, Colour colour) {
    if (quiet) {
        return;
    }
    ClearStatus();
    const bool inColour = coloured && colour != Colour::None;
    fmt::print(stream, "{}{}{}\n",
               inColour ? fmt::format("\x1b[{}m", static_cast<int>(colour)) : "",
               MakePrintable(text), inColour ? "\x1b[0m" : "");
    std::fflush(stream);
}

void Terminal::Status(std::string_view text) {
    if (quiet || !interactive) {
        return;
    }
    // The last column stays free: some terminals go to the next line once it is taken.
    fmt::print(stream, "\r\x1b[K{}", MakePrintable(text, GetSize().ws_col - 1U));
    std::fflush(stream);
    hasStatus = true;
}

winsize Terminal::GetSize() const {
    winsize size{};
    if (ioctl(fileno(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        size.ws_col = 80;
        size.ws_row = 24;
    }
    return size;
}

void Terminal::ClearStatus() {
    if (std::exchange(hasStatus, false)) {
        fmt::print(stream, "\r\x1b[K");
        std::fflush(stream);
    }
}

}  // namespace Tarnex::Platform
