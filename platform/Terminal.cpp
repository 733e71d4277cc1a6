#include "platform/Terminal.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstring>
#include <cwchar>
#include <utility>

#include "platform/Environment.h"
#include "platform/TerminalText.h"
#include "platform/WideText.h"

namespace Tarnex::Platform {
namespace {

/// Where a path may begin so that a shell, too, reads "~" as the home.
bool BeginsWord(std::string_view text, std::size_t position) {
    return position == 0 || text[position - 1] == ' ' || text[position - 1] == '(';
}

std::string ShortenHome(std::string text) {
    const std::string home = GetEnvironment("HOME").value_or("");
    if (home.size() < 2 || home.back() == '/') {
        return text;
    }
    for (std::size_t at = text.find(home); at != std::string::npos; at = text.find(home, at + 1)) {
        const std::size_t end = at + home.size();
        if (BeginsWord(text, at) && (end == text.size() || text[end] == '/')) {
            text.erase(at, home.size() - 1);
            text[at] = '~';
        }
    }
    return text;
}

}  // namespace

Terminal::Terminal(std::FILE* stream, bool quiet)
    : interactive(isatty(fileno(stream)) != 0 && GetEnvironment("TERM") != "dumb"),
      stream(stream),
      quiet(quiet),
      coloured(interactive && GetEnvironment("NO_COLOR").value_or("").empty()) {}

void Terminal::Line(std::string_view text, Colour colour, std::size_t length) {
    if (quiet) {
        return;
    }
    ClearStatus();
    const std::string line = MakePrintable(ShortenHome(std::string(text)));
    length = coloured && colour != Colour::None ? std::min(length, line.size()) : 0;
    const std::string start = length > 0 ? fmt::format("\x1b[{}m", static_cast<int>(colour)) : "";
    Write(fmt::format("{}{}{}{}\n", start, line.substr(0, length), length > 0 ? "\x1b[0m" : "",
                      line.substr(length)));
    passingRows = 0;
}

void Terminal::PassingLine(std::string_view text, Colour colour, std::size_t length) {
    const std::size_t columns = CountColumns(MakePrintable(ShortenHome(std::string(text))));
    const std::size_t width = GetSize().ws_col;
    const std::size_t rows = std::max<std::size_t>(1, (columns + width - 1) / width);
    const std::size_t before = passingRows;
    Line(text, colour, length);
    passingRows = before + rows;
}

bool Terminal::RemovePassing() {
    const std::size_t rows = std::exchange(passingRows, 0);
    if (rows == 0 || quiet) {
        return true;
    }
    if (!interactive) {
        return false;
    }
    ClearStatus();
    Write(fmt::format("\x1b[{}A\r\x1b[J", std::min<std::size_t>(rows, GetSize().ws_row - 1U)));
    return true;
}

void Terminal::Status(std::string_view text) {
    if (quiet || !interactive) {
        return;
    }
    // The last column stays free: some terminals go to the next line once it is taken.
    Write(fmt::format("\r\x1b[K{}", MakePrintable(text, GetSize().ws_col - 1U)));
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
        Write("\r\x1b[K");
    }
}

void Terminal::Write(const std::string& text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stream) == text.size();
    failed = std::fflush(stream) != 0 || !written || failed;
}

std::size_t CountColumns(std::string_view text) {
    // wcwidth knows characters of no or double width in a locale of UTF-8 alone.
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t before = unicode != nullptr ? uselocale(unicode) : nullptr;
    std::size_t columns = 0;
    for (const wchar_t c : Widen(text)) {
        columns += static_cast<std::size_t>(std::max(0, wcwidth(c)));
    }
    if (before != nullptr) {
        uselocale(before);
    }
    return columns;
}

void OccupyStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // The lowest free number is this one. The wrong direction makes each use fail.
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

std::string FlushStandardStreams() {
    for (const auto& [stream, name] : {std::pair(stdout, "output"), std::pair(stderr, "error")}) {
        if (std::fflush(stream) != 0 || std::ferror(stream) != 0) {
            // The reason of an earlier failure is forgotten. One more line gets the same.
            const bool recovered = std::fputc('\n', stream) == '\n' && std::fflush(stream) == 0;
            return fmt::format("can't write all of standard {}{}", name,
                               recovered ? "" : std::string(": ") + std::strerror(errno));
        }
    }
    return "";
}

}  // namespace Tarnex::Platform
