#include "platform/TerminalText.h"

#include <gtest/gtest.h>

namespace Tarnex::Platform {
namespace {

TEST(TerminalText, FitsShellAndTerminal) {
    EXPECT_EQ(QuoteForShell({"a/b", "", "it's", "a b"}), R"(a/b '' 'it'\''s' 'a b')");
    EXPECT_EQ(MakePrintable("a\x1b[31m\xff\n\xE2\x80\xAEz"), "a\uFFFD[31m\uFFFD \uFFFDz");
    EXPECT_EQ(MakePrintable("\u061C\u200E\u200F\u2066"), "\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(MakePrintable("\u061B\u200D\u2010"), "\u061B\u200D\u2010");
    EXPECT_EQ(MakePrintable("äöüß", 3), "äö…");
}

}  // namespace
}  // namespace Tarnex::Platform
