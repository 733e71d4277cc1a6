#include "platform/WideText.h"

#include <algorithm>
#include <cstddef>

namespace Tarnex::Platform {
namespace {

constexpr char32_t ESCAPE = 0xDC00;
constexpr char32_t REPLACEMENT = 0xFFFD;
constexpr char32_t LAST = 0x10FFFF;

bool IsSurrogate(char32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

bool IsEscapedByte(char32_t code) {
    return code >= ESCAPE + 0x80 && code <= ESCAPE + 0xFF;
}

struct Sequence {
    std::size_t length;
    char32_t bits;      // payload of the first byte
    char32_t smallest;  // the smallest code point that needs this length
};

Sequence Begin(unsigned char first) {
    if (first < 0x80) {
        return {1, first, 0};
    }
    if (first >= 0xC0 && first < 0xE0) {
        return {2, first & 0x1FU, 0x80};
    }
    if (first >= 0xE0 && first < 0xF0) {
        return {3, first & 0x0FU, 0x800};
    }
    if (first >= 0xF0 && first < 0xF8) {
        return {4, first & 0x07U, 0x10000};
    }
    return {0, 0, 0};
}

/// The code point at the start of `text` and its length. The length is 0 if it isn't valid UTF-8.
Sequence Decode(std::string_view text) {
    Sequence sequence = Begin(static_cast<unsigned char>(text.front()));
    if (sequence.length == 0 || sequence.length > text.size()) {
        return {0, 0, 0};
    }
    for (const char next : text.substr(1, sequence.length - 1)) {
        const auto byte = static_cast<unsigned char>(next);
        if ((byte & 0xC0U) != 0x80U) {
            return {0, 0, 0};
        }
        sequence.bits = sequence.bits << 6U | (byte & 0x3FU);
    }
    const bool valid =
        sequence.bits >= sequence.smallest && sequence.bits <= LAST && !IsSurrogate(sequence.bits);
    return valid ? sequence : Sequence{0, 0, 0};
}

void Encode(char32_t code, std::string& text) {
    const auto put = [&text](char32_t byte) { text += static_cast<char>(byte); };
    const auto putTail = [&put, code](unsigned shift) { put(0x80U | (code >> shift & 0x3FU)); };
    if (code < 0x80) {
        put(code);
        return;
    }
    if (code < 0x800) {
        put(0xC0U | code >> 6U);
    } else if (code < 0x10000) {
        put(0xE0U | code >> 12U);
        putTail(6);
    } else {
        put(0xF0U | code >> 18U);
        putTail(12);
        putTail(6);
    }
    putTail(0);
}

}  // namespace

std::wstring Widen(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    while (!text.empty()) {
        const Sequence found = Decode(text);
        const char32_t escaped = ESCAPE + static_cast<unsigned char>(text.front());
        wide += static_cast<wchar_t>(found.length > 0 ? found.bits : escaped);
        text.remove_prefix(std::max<std::size_t>(found.length, 1));
    }
    return wide;
}

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    narrow.reserve(text.size());
    for (const wchar_t character : text) {
        const auto code = static_cast<char32_t>(character);
        if (IsEscapedByte(code)) {
            narrow += static_cast<char>(code - ESCAPE);
        } else {
            Encode(code > LAST || IsSurrogate(code) ? REPLACEMENT : code, narrow);
        }
    }
    return narrow;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = Decode(text).length;
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace Tarnex::Platform
