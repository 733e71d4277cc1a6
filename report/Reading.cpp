#include "report/Reading.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "core/support/Exception.h"
#include "platform/Process.h"

namespace Tarnex::Reports {
namespace {

using Platform::Descriptor;

constexpr std::size_t MAX_SIZE = std::size_t{1} << 28;  // bytes; a check of 100,000 items has fewer
constexpr int MAX_DEPTH = 32;                           // a report has seven levels

[[noreturn]] void FailWithError() {
    throw Exception(std::strerror(errno));
}

/// Doesn't wait for the other end of a pipe.
Descriptor Open(const boost::filesystem::path& path) {
    Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (file.Get() < 0 || fstat(file.Get(), &status) != 0) {
        FailWithError();
    }
    if (!S_ISREG(status.st_mode)) {
        throw Exception(S_ISDIR(status.st_mode) ? std::strerror(EISDIR) : "not a regular file");
    }
    return file;
}

std::string ReadAll(int file) {
    std::string text;
    std::array<char, 65536> buffer;
    for (ssize_t size = 0; (size = read(file, buffer.data(), buffer.size())) != 0;) {
        if (size < 0 && errno != EINTR) {
            FailWithError();
        }
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        if (text.size() > MAX_SIZE) {
            throw Exception(fmt::format("larger than {} MB", MAX_SIZE >> 20));
        }
    }
    return text;
}

/// Counts brackets outside of strings, which is enough for JSON; the parser refuses anything else.
void RequireShallow(const std::string& text) {
    int depth = 0;
    bool inString = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '"') {
            inString = !inString;
        } else if (inString) {
            at += c == '\\' ? 1 : 0;
        } else if ((c == '[' || c == '{') && ++depth > MAX_DEPTH) {
            throw Exception(fmt::format("nested deeper than {} levels", MAX_DEPTH));
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
}

}  // namespace

std::string ReadText(const boost::filesystem::path& path) {
    return path == "-" ? ReadAll(STDIN_FILENO) : ReadAll(Open(path).Get());
}

Json ParseJson(const std::string& text) {
    RequireShallow(text);
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) {
        throw Exception("not a whole report: " + Explain(error));
    }
}

std::string Explain(const Json::exception& error) {
    const std::string text = error.what();
    return text.substr(text.find(' ') + 1);
}

}  // namespace Tarnex::Reports
