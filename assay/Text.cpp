#include "assay/Text.h"

#include <algorithm>

#include "platform/WideText.h"

namespace Tarnex::Assay {
namespace {

constexpr wchar_t REPLACEMENT = 0xFFFD;

bool IsBetween(wchar_t character, wchar_t first, wchar_t last) {
    return character >= first && character <= last;
}

bool SteersTerminal(wchar_t character) {
    const bool isControl = character < L' ' || IsBetween(character, 0x7F, 0x9F);
    const bool turns = IsBetween(character, 0x2028, 0x202E) || IsBetween(character, 0x2066, 0x2069);
    return isControl || turns || IsBetween(character, 0xD800, 0xDFFF);
}

wchar_t ToPrintable(wchar_t character) {
    if (character == L'\n' || character == L'\r' || character == L'\t') {
        return L' ';
    }
    return SteersTerminal(character) ? REPLACEMENT : character;
}

std::wstring WidenPrintable(std::string_view text) {
    std::wstring wide = Platform::Widen(text);
    std::ranges::transform(wide, wide.begin(), ToPrintable);
    return wide;
}

std::string Quote(const std::string& argument) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-+./,:@%";
    if (!argument.empty() && argument.find_first_not_of(plain) == std::string::npos) {
        return argument;
    }
    std::string quoted = "'";
    for (const char byte : argument) {
        quoted += byte == '\'' ? "'\\''" : std::string(1, byte);
    }
    return quoted + "'";
}

}  // namespace

std::string MakePrintable(std::string_view text) {
    return Platform::Narrow(WidenPrintable(text));
}

std::string Shorten(std::string_view text, std::size_t columns) {
    std::wstring wide = WidenPrintable(text);
    if (wide.size() > columns) {
        wide.resize(columns == 0 ? 0 : columns - 1);
        wide += columns == 0 ? L"" : L"…";
    }
    return Platform::Narrow(wide);
}

std::string QuoteForShell(const std::vector<std::string>& arguments) {
    std::vector<std::string> quoted(arguments.size());
    std::ranges::transform(arguments, quoted.begin(), Quote);
    return Join(quoted, " ");
}

std::string Join(const std::vector<std::string>& texts, std::string_view separator) {
    std::string joined;
    for (const std::string& text : texts) {
        joined.append(joined.empty() ? "" : separator).append(text);
    }
    return joined;
}

}  // namespace Tarnex::Assay
