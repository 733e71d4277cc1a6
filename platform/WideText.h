#pragma once

#include <string>
#include <string_view>

namespace Tarnex::Platform {

/// Converts UTF-8 to wide text. A byte outside valid UTF-8 becomes the lone surrogate 0xDC00 plus
/// the byte, so that `Narrow` restores any text unchanged. Overlong forms, surrogates and code
/// points above U+10FFFF aren't valid.
[[nodiscard]] std::wstring Widen(std::string_view text);

/// Converts wide text to UTF-8. U+DC80 to U+DCFF become single bytes. Everything else that UTF-8
/// can't represent becomes U+FFFD.
[[nodiscard]] std::string Narrow(std::wstring_view text);

[[nodiscard]] bool IsUtf8(std::string_view text);

}  // namespace Tarnex::Platform
