#include "report/Accepted.h"

#include <gmock/gmock.h>

#include <boost/filesystem.hpp>
#include <fstream>

#include "core/support/Exception.h"
#include "report/Compare.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::Verdict;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

/// A list in a file of its own, which goes with it.
class AcceptedTest : public testing::Test {
protected:
    ~AcceptedTest() override { boost::filesystem::remove(path); }

    AcceptedItems Read(const std::string& text) const {
        std::ofstream(path) << text;
        return AcceptedItems(path);
    }

    std::string Explain(const std::string& text) const {
        try {
            Read(text);
        } catch (const Exception& error) {
            return error.what();
        }
        return "taken";
    }

    const std::string path =
        (boost::filesystem::path(testing::TempDir()) / boost::filesystem::unique_path()).string();
};

Item MakeItem(const std::string& name, Verdict verdict) {
    Item item;
    item.name = name;
    item.verdict = verdict;
    return item;
}

TEST_F(AcceptedTest, MarksWhatALineMeans) {
    struct Row {
        const char* lines;
        const char* name;
        Verdict verdict;
        bool accepted;
    };
    const Row rows[] = {
        {"amp", "amp", Verdict::Crashed, true},
        {"# amp\n\n  AMP \r\n", "amp", Verdict::Crashed, true},
        {"#amp", "amp", Verdict::Crashed, false},
        {"amp#2", "amp#2", Verdict::Failed, true},
        {"amp", "amp", Verdict::Good, false},
        {"amp", "amplify", Verdict::Failed, false},
        {"amp crashed", "amp", Verdict::Crashed, true},
        {"amp\tcrashed", "amp", Verdict::Hung, false},
        {"amp crashed\namp hung", "amp", Verdict::Hung, true},
        {"amp\namp hung", "amp", Verdict::Ended, true},
        {"*.NVDEC_IMPL.*", "Decoder.NVDEC_IMPL.CODEC_ID_AV1", Verdict::Failed, true},
        {"gain*", "gain/mono", Verdict::Unsteady, true},
        {"big amp failed", "big amp", Verdict::Failed, true},
        {"big?amp", "big amp", Verdict::Failed, true},
        {"a[b", "a[b", Verdict::Failed, true},
    };
    for (const Row& row : rows) {
        std::vector<Item> items{MakeItem(row.name, row.verdict)};
        items[0].accepted = !row.accepted;
        Read(row.lines).Mark(items);
        EXPECT_EQ(items[0].accepted, row.accepted) << row.lines << " | " << row.name;
        EXPECT_EQ(items[0].verdict, row.verdict);
    }
}

TEST_F(AcceptedTest, ALineThatIsWrongIsToldByItsNumber) {
    EXPECT_EQ(Explain("amp\n\nbig amp\n").find(path + ":3: \"amp\" isn't a verdict"), 0U);
    EXPECT_THAT(Explain("amp good"), HasSubstr(":1: what is good isn't bad"));
    EXPECT_THAT(Explain("# one\namp\xff\n"), EndsWith(":2: the line isn't UTF-8"));
    EXPECT_THROW(AcceptedItems("/none"), Exception);
    EXPECT_THROW(AcceptedItems("/"), Exception);
    EXPECT_EQ(Explain("amp\n"), "taken");
}

TEST_F(AcceptedTest, ALineThatMatchesNothingIsNamed) {
    AcceptedItems accepted = Read("amp crashed\n#\nnone*\nfine\n");
    std::vector<Item> items{MakeItem("amp", Verdict::Failed), MakeItem("fine", Verdict::Good)};
    accepted.Mark(items);
    EXPECT_THAT(accepted.DescribeUnused(),
                ElementsAre(path + ":3: nothing that was checked is called none*"));
}

TEST_F(AcceptedTest, AcceptedItemsMakeNothingWorse) {
    Report before;
    Report after;
    before.items = {MakeItem("amp", Verdict::Good), MakeItem("gain", Verdict::Good)};
    after.items = {MakeItem("amp", Verdict::Crashed), MakeItem("gain", Verdict::Crashed)};
    Read("amp").Mark(after.items);
    const auto changes = Compare(before, after);
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[0].trend, Trend::Accepted);
    EXPECT_EQ(changes[1].trend, Trend::Worse);
}

}  // namespace
}  // namespace Tarnex::Reports
