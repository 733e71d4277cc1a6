#include "assay/ItemLine.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>

#include "assay/Trace.h"
#include "report/Wording.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::ItemKind;

Item MakeItem(const std::string& name, const std::string& verdict, const std::string& reason) {
    Item item;
    item.name = name;
    item.verdict = Parent::ParseVerdict(verdict).value();
    item.reason = reason;
    return item;
}

std::string Describe(const Item& item, const Columns& columns) {
    return fmt::to_string(fmt::join(DescribeItem(item, columns), "\n"));
}

TEST(ItemLineTest, SaysEachThingOnce) {
    Item failed = MakeItem("autotalent", "failed",
                           "Plugin autotalent, module /app/autotalent.so: can't be loaded: "
                           "/lib/autotalent.so: undefined symbol: __exp_finite");
    failed.file.emplace().path = "/lib/autotalent.so";
    failed.package = "autotalent 0.2-5+b2";
    Item crashed = MakeItem("gain/mono", "crashed", "SIGSEGV");
    crashed.text = "ready\nassertion failed: gain > 0\n\n";
    Item codec = MakeItem("Decoder.MEDIA_FOUNDATION_IMPL.CODEC_ID_AAC", "ended", "17");
    codec.kind = ItemKind::Codec;
    codec.coder = "Decoder";
    codec.implementation = "MEDIA_FOUNDATION_IMPL";
    codec.codec = "CODEC_ID_AAC";
    Item spoiler = MakeItem("a\x1b[2J", "good", "");
    spoiler.spoils = {"b", "c"};
    const Columns columns{8, 10, 0};
    const std::pair<Item, const char*> rows[] = {
        {failed, "failed    autotalent  undefined symbol: __exp_finite (autotalent 0.2-5+b2)"},
        {crashed, "crashed   gain/mono   SIGSEGV, after \"assertion failed: gain > 0\""},
        {MakeItem("curves", "hung", "20"), "hung      curves      no progress for 20 s"},
        {MakeItem("curves", "ended", "standard error closed"),
         "ended     curves      standard error closed"},
        {codec, "ended     GStreamer AAC decoder  exit status 17"},
        {spoiler, "good      a\xEF\xBF\xBD[2J       breaks b, c"},
        {MakeItem("\xE6\xBC\xA2", "failed", "odd"), "failed    \xE6\xBC\xA2          odd"},
        {MakeItem("plain", "crashed", ""), "crashed   plain"}};
    for (const auto& [item, text] : rows) {
        EXPECT_EQ(Describe(item, columns), text);
    }
}

TEST(ItemLineTest, BreaksBetweenWords) {
    const Item item = MakeItem("curves", "failed", "one two three /a/very/long/path/of/a/file x");
    EXPECT_EQ(Describe(item, {8, 6, 30}),
              "failed    curves  one two\n"
              "                  three\n"
              "                  /a/very/long/path/of/a/file\n"
              "                  x");
    EXPECT_EQ(Describe(MakeItem("longer name", "failed", "one two three"), {8, 6, 30}),
              "failed    longer name\n"
              "                  one two\n"
              "                  three");
}

TEST(TraceTest, FindsStacksAndWhatLacksSymbols) {
    const std::string text =
        "[New Thread 0x7f]\nProgram received signal SIGSEGV, Segmentation fault.\n"
        "0x1 in run () from /lib/a.so\n#0  0x1 in run () from /lib/a.so\n"
        "#1  0x2 in main (argc=1,\n    argv=0x3) at main.c:3\n[Inferior 1 killed]\n";
    const auto stacks = FindStacks(text);
    EXPECT_THAT(stacks,
                testing::ElementsAre("Program received signal SIGSEGV, Segmentation fault.",
                                     "#0  0x1 in run () from /lib/a.so", "#1  0x2 in main (argc=1,",
                                     "    argv=0x3) at main.c:3"));
    EXPECT_THAT(FindWithoutSymbols(stacks), testing::ElementsAre("/lib/a.so"));
    EXPECT_THAT(FindStacks("[Inferior 1 (process 7) exited normally]\nNo stack.\n"),
                testing::IsEmpty());
}

}  // namespace
}  // namespace Tarnex::Assay
