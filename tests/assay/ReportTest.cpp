#include <gmock/gmock.h>

#include <pugixml.hpp>

#include "assay/Compare.h"
#include "assay/Renderers.h"
#include "assay/Report.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;

const std::string NASTY = "</script><b>\"&\x01\x1b[31m\xff\xEF\xBF\xBF\n";

Item MakePlugin(const std::string& name, const std::string& verdict) {
    Item item;
    item.name = name;
    item.factory = "FilterFactory";
    item.verdict = Parent::ParseVerdict(verdict).value();
    return item;
}

/// A report with something in each of its parts.
Report MakeReport() {
    Report report;
    report.machine = report.options = Json::object();
    report.environment = {{"kernel", "6.1"}};
    report.items = {MakePlugin("amp", "good"), MakePlugin(NASTY, "failed")};
    report.items[0].file = {"/lib/amp.so", 18446744073709551615U, "2026", "ab12"};
    report.items[0].seconds = 0.25;
    report.items[1].text = report.items[1].reason = NASTY;
    report.items[1].repro = {"/app/Assayer", NASTY};
    report.items[1].company = {"spoiler"};
    report.runs = {{{"plugins", NASTY}, {.signal = "SIGSEGV"}, 1},
                   {{}, {.status = 7}, 2},
                   {{}, {.deadline = 20}, 3}};
    return report;
}

TEST(ReportTest, WhatIsWrittenIsRead) {
    const std::string text = Render(ToJson(MakeReport()));
    const Report report = ParseReport(text);
    EXPECT_EQ(Render(ToJson(report)), text);
    EXPECT_EQ(report.items[0].file, MakeReport().items[0].file);
    EXPECT_EQ(report.items[1].verdict, Verdict::Failed);
    EXPECT_EQ(CountVerdicts(report.items)["plugin"], (Json{{"good", 1}, {"failed", 1}}));
}

TEST(ReportTest, AReportThatIsNoneIsRefusedWithTheReason) {
    const Json good = ToJson(MakeReport());
    const auto explain = [](const std::string& text) -> std::string {
        try {
            ParseReport(text);
        } catch (const Exception& error) {
            return error.what();
        }
        return "taken";
    };
    const auto change = [&](const std::string& pointer, const Json& value) {
        Json json = Json::parse(Render(good));
        json[Json::json_pointer(pointer)] = value;
        return explain(Render(json));
    };
    const std::string text = Render(good);
    EXPECT_THAT(explain(text.substr(0, text.size() / 2)), testing::HasSubstr("not a whole report"));
    EXPECT_THAT(explain(""), testing::HasSubstr("not a whole report"));
    EXPECT_THAT(explain("[]"), testing::HasSubstr("not a whole report"));
    EXPECT_THAT(explain("{}"), testing::HasSubstr("'schema'"));
    EXPECT_THAT(change("/schema", 2), testing::HasSubstr("schema 2"));
    EXPECT_THAT(change("/items/1/verdict", "odd"),
                testing::HasSubstr("item 1: there is no verdict \"odd\""));
    EXPECT_THAT(change("/items/0/kind", "odd"), testing::HasSubstr("item 0: there is no kind"));
    EXPECT_THAT(change("/items/0", Json::object()), testing::HasSubstr("item 0: "));
    EXPECT_THAT(change("/items/0/repro", 5), testing::HasSubstr("item 0: "));
    EXPECT_THAT(change("/items", Json::object()), testing::Ne("taken"));
    EXPECT_THAT(change("/runs/0/end", Json::object()), testing::Ne("taken"));
    EXPECT_THAT(change("/items/0/file/size", 1e25), testing::HasSubstr("item 0: 1e+25 isn't"));
    EXPECT_THAT(change("/runs/1/end/status", -1), testing::HasSubstr("-1 isn't"));
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
                        {"good", "no-material", "other"},
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

TEST(CompareTest, NamesReasonAndFile) {
    Report before = MakeReport();
    Report after = MakeReport();
    after.items[0].verdict = Verdict::Crashed;
    after.items[0].reason = "SIGSEGV";
    after.items[0].file->size = 1;
    const auto changes = Compare(before, after);
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].text, "amp: good -> crashed (SIGSEGV); its file changed");
}

TEST(RenderersTest, TextsOfModulesStayTexts) {
    const std::string page = RenderHtml({{"one.json", MakeReport()}});
    const std::string start = R"(<script type="application/json" id="reports">)";
    const std::size_t at = page.find(start) + start.size();
    const Json data = Json::parse(page.substr(at, page.find("</script", at) - at));
    EXPECT_EQ(data[0]["source"], "one.json");
    EXPECT_EQ(data[0]["items"].size(), 2U);

    pugi::xml_document document;
    const Report read = ParseReport(Render(ToJson(MakeReport())));
    const std::string xml = RenderJunit({{"one", read}, {"two", read}});
    ASSERT_TRUE(document.load_string(xml.c_str())) << xml;
    EXPECT_EQ(xml.find_first_of("\x01\x1b"), std::string::npos) << xml;
    EXPECT_THAT(xml, testing::Not(testing::ContainsRegex("&#(0?1|27);")));
    const pugi::xml_node suite = document.child("testsuites").child("testsuite");
    EXPECT_STREQ(suite.attribute("name").value(), "one: FilterFactory");
    EXPECT_EQ(suite.attribute("tests").as_int(), 2);
    EXPECT_EQ(suite.attribute("failures").as_int(), 1);
    EXPECT_EQ(suite.attribute("errors").as_int() + suite.attribute("skipped").as_int(), 0);
    EXPECT_TRUE(suite.last_child().child("failure"));
}

}  // namespace
}  // namespace Tarnex::Assay
