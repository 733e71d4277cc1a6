// What got worse between two reports, and why.

#include <gmock/gmock.h>

#include "report/Compare.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::ItemKind;
using Parent::Verdict;

Item MakePlugin(const std::string& name, const std::string& verdict) {
    Item item;
    item.name = name;
    item.verdict = Parent::ParseVerdict(verdict).value();
    return item;
}

TEST(CompareTest, TellsWorseFromBetter) {
    struct Row {
        const char* before;  // empty: not there
        const char* after;
        const char* trend;
    };
    const Row rows[] = {{"good", "good", "same"},
                        {"good", "crashed", "worse"},
                        {"failed", "hung", "worse"},
                        {"tolerated", "unsteady", "worse"},
                        {"good", "", "worse"},
                        {"good", "missing", "worse"},
                        {"", "crashed", "worse"},
                        {"not-reached", "ended", "worse"},
                        {"crashed", "good", "better"},
                        {"crashed", "failed", "better"},
                        {"unsteady", "tolerated", "better"},
                        {"crashed", "not-reached", "other"},
                        {"crashed", "hung", "other"},
                        {"good", "no-material", "worse"},
                        {"good", "unavailable", "worse"},
                        {"failed", "no-material", "better"},
                        {"", "good", "appeared"},
                        {"missing", "good", "appeared"},
                        {"failed", "", "gone"},
                        {"tolerated", "missing", "gone"},
                        {"missing", "", "same"},
                        {"", "missing", "same"}};
    const std::map<Trend, std::string> names{{Trend::Worse, "worse"},
                                             {Trend::Better, "better"},
                                             {Trend::Appeared, "appeared"},
                                             {Trend::Gone, "gone"},
                                             {Trend::Other, "other"}};
    const auto make = [](const std::string& verdict) {
        Report report;
        if (!verdict.empty()) {
            report.items.push_back(MakePlugin("amp", verdict));
        }
        return report;
    };
    for (const Row& row : rows) {
        const auto changes = Compare(make(row.before), make(row.after));
        EXPECT_EQ(changes.empty() ? "same" : names.at(changes.front().trend), row.trend)
            << row.before << " -> " << row.after;
    }
}

TEST(CompareTest, NamesTheReasonAndWhatChanged) {
    struct Row {
        std::function<void(Report&)> change;
        const char* cause;
    };
    const Row rows[] = {
        {[](Report&) {}, "; neither its file nor the machine changed"},
        {[](Report& report) { report.items[0].file->size = 1; }, "; its file changed"},
        {[](Report& report) { report.items[0].file->modified = "2027"; },
         "; neither its file nor the machine changed"},
        {[](Report& report) { report.items[0].package = "amp 2"; },
         "; its package changed: amp 1 -> amp 2"},
        {[](Report& report) { report.environment["kernel"] = "6.2"; },
         "; only the machine changed"},
        {[](Report& report) { report.ground.files[0].path = "/lib/libx.so.2"; },
         "; only the machine changed"},
    };
    Report before;
    before.environment = {{"kernel", "6.1"}};
    before.items = {MakePlugin("amp", "failed")};
    before.items[0].package = "amp 1";
    before.items[0].file = {"/lib/amp.so", 7, "2026", "ab12"};
    before.ground.files = {{"/lib/libx.so.1", 1, 2, 3, 4, 5, ""}};
    for (const Row& row : rows) {
        Report after = before;
        after.items[0].verdict = Verdict::Crashed;
        after.items[0].reason = "SIGSEGV";
        row.change(after);
        const auto changes = Compare(before, after);
        ASSERT_EQ(changes.size(), 1U);
        EXPECT_EQ(changes[0].text, std::string("amp: failed -> crashed (SIGSEGV)") + row.cause);
    }
    Report after = before;
    after.environment["kernel"] = "6.2";
    after.ground.files[0].path = "/lib/libx.so.2";
    EXPECT_THAT(CompareMachines(before, after),
                testing::ElementsAre("kernel: 6.1 -> 6.2", "library: libx.so.1 -> libx.so.2"));
}

TEST(CompareTest, ComparesOnlyWhatBothReportsAreAbout) {
    Report all;
    all.options = {{"check", "all"}, {"plugins", Json::array()}, {"depth", "exercise"}};
    all.items = {MakePlugin("amp", "good"), MakePlugin("gain", "good"),
                 MakePlugin("amp/one", "good")};
    all.items[2].kind = ItemKind::Exercise;
    all.items[2].plugin = "amp";
    all.items[2].depth = "exercise";
    all.items.push_back(MakePlugin("Decoder.X.Y", "good"));
    all.items[3].kind = ItemKind::Codec;
    Report part = all;
    part.options["check"] = "plugins";
    part.options["plugins"] = {"amp"};
    part.items = {all.items[0]};
    EXPECT_FALSE(HaveSameScope(all, part));
    ASSERT_EQ(Compare(all, part).size(), 1U) << "only the exercise went";
    part.items[0].verdict = Verdict::Crashed;
    ASSERT_EQ(Compare(all, part).size(), 1U) << "its module says it all";
    EXPECT_EQ(Compare(part, all).size(), 1U);
}

}  // namespace
}  // namespace Tarnex::Reports
