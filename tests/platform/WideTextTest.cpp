#include "platform/WideText.h"

#include <gtest/gtest.h>

namespace Tarnex::Platform {
namespace {

TEST(WideText, CarriesEveryTextThereAndBack) {
    struct Case {
        std::string narrow;
        std::wstring wide;
        bool valid;
    };
    const Case cases[] = {
        {"", L"", true},
        {"plugins", L"plugins", true},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xAC", L"\u00E4\u20AC\U0001F3AC", true},
        {"\xF4\x8F\xBF\xBF", L"\U0010FFFF", true},
        {"\xED\x9F\xBF\xEE\x80\x80", L"\uD7FF\uE000", true},
        {std::string("a\0b", 3), std::wstring(L"a\0b", 3), true},
        {"a\xFF", L"a\xDCFF", false},
        {"\x80z", L"\xDC80z", false},
        {"\xE2\x82", L"\xDCE2\xDC82", false},                      // cut off
        {"\xE2\x82-", L"\xDCE2\xDC82-", false},                    // broken off
        {"\xC1\x81", L"\xDCC1\xDC81", false},                      // overlong
        {"\xE0\x9F\xBF", L"\xDCE0\xDC9F\xDCBF", false},            // overlong
        {"\xED\xB2\x80", L"\xDCED\xDCB2\xDC80", false},            // an encoded surrogate
        {"\xF4\x90\x80\x80", L"\xDCF4\xDC90\xDC80\xDC80", false},  // beyond the last
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Widen(c.narrow), c.wide) << c.narrow;
        EXPECT_EQ(Narrow(c.wide), c.narrow);
        EXPECT_EQ(IsUtf8(c.narrow), c.valid) << c.narrow;
    }
}

TEST(WideText, ReplacesWhatUtf8CannotHold) {
    EXPECT_EQ(Narrow(L"\xD800|\xDC7F|\xDD00|\x110000"),
              "\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD");
}

}  // namespace
}  // namespace Tarnex::Platform
