#include "platform/TerminalText.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>

#include "platform/WideText.h"

namespace Tarnex::Platform {
namespace {

wchar_t ToPrintable(wchar_t c) {
    if (c == L'\n' || c == L'\r' || c == L'\t') {
        return L' ';
    }
    const bool isControl = c < L' ' || (c >= 0x7F && c <= 0x9F) || (c >= 0xD800 && c <= 0xDFFF);
    const bool turns = (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) ||
                       c == 0x200E || c == 0x200F || c == 0x061C;
    return isControl || turns ? L'\xFFFD' : c;
}

bool IsPlain(unsigned char c) {
    return std::isalnum(c) != 0 ||
           std::string_view("_-+./,:@%").find(static_cast<char>(c)) != std::string_view::npos;
}

}  // namespace

std::string MakePrintable(std::string_view text, std::size_t columns) {
    std::wstring wide = Widen(text);
    std::ranges::transform(wide, wide.begin(), ToPrintable);
    if (wide.size() > columns) {
        wide.resize(columns);
        wide.back() = L'…';
    }
    return Narrow(wide);
}

std::string QuoteForShell(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments) {
        const bool isPlain = !argument.empty() && std::ranges::all_of(argument, IsPlain);
        const std::string quoted = boost::replace_all_copy(argument, "'", "'\\''");
        line += fmt::format("{0}{1}{2}{1}", line.empty() ? "" : " ", isPlain ? "" : "'", quoted);
    }
    return line;
}

}  // namespace Tarnex::Platform
