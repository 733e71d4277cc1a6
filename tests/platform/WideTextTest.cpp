#include "platform/WideText.h"

#include <gtest/gtest.h>

namespace Tarnex::Platform {
namespace {

TEST(WideText, RoundTripsEveryText) {
    const std::tuple<std::string, std::wstring, bool> cases[] = {
        {"", L"", true},
        {"a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xAC", L"a\u00E4\u20AC\U0001F3AC", true},
        {"\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF", L"\uD7FF\uE000\U0010FFFF", true},
        {std::string("a\0b", 3), std::wstring(L"a\0b", 3), true},
        {"\x80z\xFF", L"\xDC80z\xDCFF", false},
        {"\xE2\x82-\xE2\x82", L"\xDCE2\xDC82-\xDCE2\xDC82", false},  // incomplete
        {"\xC1\x81", L"\xDCC1\xDC81", false},                        // overlong
        {"\xE0\x9F\xBF", L"\xDCE0\xDC9F\xDCBF", false},              // overlong
        {"\xED\xB2\x80", L"\xDCED\xDCB2\xDC80", false},              // an encoded surrogate
        {"\xF4\x90\x80\x80", L"\xDCF4\xDC90\xDC80\xDC80", false},    // above U+10FFFF
    };
    for (const auto& [narrow, wide, valid] : cases) {
        EXPECT_EQ(Widen(narrow), wide) << narrow;
        EXPECT_EQ(Narrow(wide), narrow);
        EXPECT_EQ(IsUtf8(narrow), valid) << narrow;
    }
    EXPECT_EQ(Narrow(L"\xD800|\xDC7F|\x110000"), "\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD");
}

}  // namespace
}  // namespace Tarnex::Platform
