#pragma once

#include <string>
#include <string_view>

namespace Tarnex::Platform {

/// UTF-8 to wide text. A byte that isn't part of valid UTF-8 (overlong forms, surrogates and what
/// lies beyond U+10FFFF are none) becomes the lone surrogate 0xDC00 plus the byte, so that `Narrow`
/// gives every text back unchanged.
[[nodiscard]] std::wstring Widen(std::string_view text);

/// Wide text to UTF-8. U+DC80 to U+DCFF become single bytes; what else can't be written in UTF-8
/// becomes U+FFFD.
[[nodiscard]] std::string Narrow(std::wstring_view text);

[[nodiscard]] bool IsUtf8(std::string_view text);

}  // namespace Tarnex::Platform
