#include <gmock/gmock.h>

#include <pugixml.hpp>

#include "core/support/Exception.h"
#include "report/HtmlPage.h"
#include "report/Junit.h"
#include "report/Report.h"

namespace Tarnex::Reports {
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
    report.badEnd = "SIGSEGV";
    report.items = {MakePlugin("amp", "good"), MakePlugin(NASTY, "failed")};
    report.items[0].file = {"/lib/amp.so", 18446744073709551615U, "2026", "ab12"};
    report.items[0].seconds = 0.25;
    report.items[1].text = report.items[1].reason = NASTY;
    report.items[1].repro = {"/app/Assayer", NASTY};
    report.items[1].company = {"spoiler"};
    report.runs = {{{"plugins", NASTY}, {.signal = "SIGSEGV"}, 1},
                   {{}, {.status = 7}, 2},
                   {{}, {.deadline = 20}, 3}};
    report.ground = {{{{"kernel", "6.1"}}},
                     {{"/lib/x.so", 1, 2, 3, -4, 5, "ab"}},
                     {{0, {0}, {{"x.so", "/lib/x.so"}}}},
                     {Ground{0, {0, 0}}, std::nullopt}};
    return report;
}

TEST(ReportTest, WhatIsWrittenIsRead) {
    const std::string text = Render(ToSavedJson(MakeReport()));
    const Report report = ParseReport(text);
    EXPECT_EQ(Render(ToSavedJson(report)), text);
    EXPECT_EQ(report.items[0].file, MakeReport().items[0].file);
    EXPECT_EQ(report.items[1].verdict, Verdict::Failed);
    EXPECT_EQ(CountVerdicts(report.items)["plugin"], (Json{{"good", 1}, {"failed", 1}}));
}

TEST(ReportTest, AReportThatIsNoneIsRefusedWithTheReason) {
    const Json good = ToSavedJson(MakeReport());
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
    EXPECT_EQ(explain("[]"), "not a report of assay");
    EXPECT_EQ(explain("{}"), "not a report of assay");
    EXPECT_THAT(explain(R"({"schema": 2})"), testing::HasSubstr("not a whole report"));
    EXPECT_THAT(change("/schema", 1), testing::HasSubstr("schema 1, written by assay "));
    EXPECT_THAT(change("/machine/deep", Json::parse(std::string(40, '[') + std::string(40, ']'))),
                testing::HasSubstr("nested deeper"));
    EXPECT_THAT(explain(std::string(100'000, '[')), testing::HasSubstr("nested deeper"));
    EXPECT_THAT(change("/ground/items/0", {7}), testing::HasSubstr("beyond the end"));
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

/// What the page has as its data.
Json ReadPage(const std::vector<Report>& reports) {
    HtmlPage maker;
    for (std::size_t i = 0; i < reports.size(); ++i) {
        maker.Add("host" + std::to_string(i), reports[i]);
    }
    const std::string page = maker.Render();
    const std::string start = R"(<script type="application/json" id="data">)";
    const std::size_t at = page.find(start) + start.size();
    return Json::parse(page.substr(at, page.find("</script", at) - at));
}

TEST(RenderersTest, TextsOfModulesStayTexts) {
    const Json data = ReadPage({MakeReport()});
    EXPECT_EQ(data["hosts"][0]["source"], "host0");
    EXPECT_EQ(data["rows"].size(), 2U);

    pugi::xml_document document;
    const Report read = ParseReport(Render(ToJson(MakeReport())));
    Junit junit(true);
    junit.Add("one", read);
    junit.Add("two", read);
    const std::string xml = junit.Render();
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

TEST(RenderersTest, APageHasWhatHostsShareOnce) {
    std::vector<Report> reports(4, MakeReport());
    reports[1].items[0].seconds = 7;
    reports[2].items[0].verdict = Verdict::Hung;
    reports[3].items.pop_back();
    const Json data = ReadPage(reports);
    EXPECT_EQ(data["rows"][0]["outcomes"].size(), 2U);
    EXPECT_EQ(data["rows"][1]["outcomes"].size(), 1U);
    std::vector<std::string> differs;
    for (const Json& host : data["hosts"]) {
        differs.push_back(host["differs"].dump());
    }
    EXPECT_THAT(differs, testing::ElementsAre("[]", "[]", "[[0,1]]", "[[1,-1]]"));
    EXPECT_EQ(data["surroundings"].size(), 1U);
    EXPECT_TRUE(data["runs"].empty());
}

TEST(RenderersTest, JunitSaysWhatFailedAndWhatWasSkipped) {
    struct Row {
        const char* verdict;
        bool accepted;
        const char* element;
    };
    const Row rows[] = {{"good", false, ""},           {"tolerated", false, ""},
                        {"failed", false, "failure"},  {"failed", true, "skipped"},
                        {"crashed", false, "error"},   {"unsteady", false, "error"},
                        {"hung", true, "skipped"},     {"unavailable", false, "skipped"},
                        {"missing", false, "skipped"}, {"not-reached", false, "skipped"}};
    Report report;
    for (const Row& row : rows) {
        report.items.push_back(MakePlugin(row.verdict, row.verdict));
        report.items.back().interface = "LADSPA";
        report.items.back().accepted = row.accepted;
    }
    Junit junit(false);
    junit.Add("", report);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(junit.Render().c_str()));
    auto test = document.child("testsuites").child("testsuite").begin();
    EXPECT_STREQ(test->parent().attribute("name").value(), "LADSPA");
    for (const Row& row : rows) {
        EXPECT_STREQ(test->first_child().name(), row.element) << row.verdict;
        ++test;
    }
}

}  // namespace
}  // namespace Tarnex::Reports
