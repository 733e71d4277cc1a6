#include "report/Metrics.h"

#include <gmock/gmock.h>

#include <sstream>

#include "core/support/Exception.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::ItemKind;
using Parent::Verdict;
using testing::HasSubstr;

Item MakeItem(const std::string& name, Verdict verdict, const std::string& package = "") {
    Item item;
    item.name = name;
    item.verdict = verdict;
    item.package = package;
    return item;
}

std::string RenderItems(const std::vector<Item>& items) {
    Report report;
    report.items = items;
    report.started = "2026-01-31T12:00:00Z";
    report.seconds = 1.25;
    report.program = {{"version", "1.2\"3"}};
    return RenderMetrics(report);
}

std::size_t CountLines(const std::string& text, const std::string& start) {
    std::size_t count = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        count += line.starts_with(start) ? 1 : 0;
    }
    return count;
}

TEST(MetricsTest, TellsCountsBadItemsAndTheCheck) {
    Item codec = MakeItem("Decoder.A_IMPL.CODEC_ID_B", Verdict::Hung);
    codec.kind = ItemKind::Codec;
    Item accepted = MakeItem("old", Verdict::Crashed);
    accepted.accepted = true;
    const std::string text =
        RenderItems({MakeItem("a\"b\\c\nd\t", Verdict::Failed, "amp \"x 1:2.0-1"),
                     MakeItem("fine", Verdict::Good), codec, accepted});
    for (
        const char* line :
        {R"(assayer_items{kind="plugin",verdict="failed"} 1)",
         R"(assayer_items{kind="plugin",verdict="crashed"} 1)",
         R"(assayer_items{kind="exercise",verdict="unavailable"} 0)",
         R"(assayer_bad_item{kind="plugin",name="a\"b\\c\nd	",verdict="failed",package="amp"} 1)",
         R"(assayer_bad_item{kind="codec",name="Decoder.A_IMPL.CODEC_ID_B",verdict="hung",package=""} 1)",
         "assayer_bad_items_left_out 0", "assayer_accepted_items 1", "assayer_check_complete 0",
         "assayer_check_seconds 1.25", "assayer_check_timestamp_seconds 1769860800",
         R"(assayer_build_info{version="1.2\"3"} 1)", "# TYPE assayer_bad_item gauge"}) {
        EXPECT_THAT(text, HasSubstr(std::string("\n").append(line).append("\n")));
    }
    EXPECT_EQ(CountLines(text, "assayer_items{"), 33U);
    EXPECT_EQ(CountLines(text, "assayer_bad_item{"), 2U);
    EXPECT_EQ(CountLines(text, "# HELP"), CountLines(text, "# TYPE"));
}

TEST(MetricsTest, ManyBadItemsAreCutWorstFirstAndNoneComesTwice) {
    std::vector<Item> items;
    items.reserve(252);
    for (int i = 0; i < 250; ++i) {
        items.push_back(MakeItem("item" + std::to_string(i), Verdict::Failed));
    }
    items.push_back(MakeItem("item7", Verdict::Failed));
    items.push_back(MakeItem("last", Verdict::Crashed));
    const std::string text = RenderItems(items);
    EXPECT_EQ(CountLines(text, "assayer_bad_item{"), MOST_BAD_ITEMS);
    EXPECT_EQ(CountLines(text, R"(assayer_bad_item{kind="plugin",name="item7")"), 1U);
    EXPECT_THAT(text, HasSubstr("name=\"last\""));
    EXPECT_THAT(text, HasSubstr("assayer_bad_items_left_out 51\n"));
}

TEST(MetricsTest, AReportWithoutATimeIsRefused) {
    Report report;
    report.started = "yesterday";
    EXPECT_THROW(RenderMetrics(report), Exception);
}

}  // namespace
}  // namespace Tarnex::Reports
