#include "assay/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

#include "assay/Text.h"

namespace Tarnex::Assay {
namespace {

bool IsSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool IsCapable(std::FILE* stream) {
    const char* kind = std::getenv("TERM");
    return isatty(fileno(stream)) != 0 && kind != nullptr && std::string_view(kind) != "dumb";
}

winsize GetSize(std::FILE* stream) {
    winsize size{};
    if (ioctl(fileno(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        size.ws_col = 80;
        size.ws_row = 24;
    }
    return size;
}

const char* GetCode(Colour colour) {
    switch (colour) {
        case Colour::Red:
            return "\x1b[31m";
        case Colour::Green:
            return "\x1b[32m";
        case Colour::Yellow:
            return "\x1b[33m";
        case Colour::None:
            break;
    }
    return "";
}

}  // namespace

Terminal::Terminal(std::FILE* stream, bool quiet)
    : stream(stream),
      quiet(quiet),
      interactive(IsCapable(stream)),
      coloured(interactive && !IsSet("NO_COLOR")) {}

void Terminal::Line(std::string_view text, Colour colour) {
    if (quiet) {
        return;
    }
    ClearStatus();
    const bool inColour = coloured && colour != Colour::None;
    std::fprintf(stream, "%s%.*s%s\n", inColour ? GetCode(colour) : "",
                 static_cast<int>(text.size()), text.data(), inColour ? "\x1b[0m" : "");
    std::fflush(stream);
}

void Terminal::Status(std::string_view text) {
    if (quiet || !interactive) {
        return;
    }
    // The last column stays free: some terminals go to the next line once it is taken.
    const std::string cut = Shorten(text, GetSize(stream).ws_col - 1U);
    std::fprintf(stream, "\r\x1b[K%s", cut.c_str());
    std::fflush(stream);
    hasStatus = true;
}

void Terminal::ClearStatus() {
    if (hasStatus) {
        std::fputs("\r\x1b[K", stream);
        std::fflush(stream);
        hasStatus = false;
    }
}

std::size_t Terminal::Rows() const {
    return GetSize(stream).ws_row;
}

}  // namespace Tarnex::Assay
