#include "assay/Renderers.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>
#include <map>
#include <pugixml.hpp>
#include <sstream>

#include "assay/Page.h"
#include "platform/TerminalText.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;

constexpr std::string_view PLACEHOLDER = "/*REPORTS*/[]";

/// XML can't hold most control characters, not even as references; two code points neither.
std::string ToXml(std::string text) {
    for (char& c : text) {
        const bool isControl = static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t';
        c = isControl ? '?' : c;
    }
    boost::replace_all(text, "\xEF\xBF\xBE", "?");
    boost::replace_all(text, "\xEF\xBF\xBF", "?");
    return text;
}

template <class Value>
void Set(pugi::xml_node node, const char* name, const Value& value) {
    node.append_attribute(name) = ToXml(fmt::format("{}", value)).c_str();
}

/// Null: nothing to tell.
const char* GetElement(Verdict verdict) {
    if (verdict == Verdict::Good || verdict == Verdict::Tolerated) {
        return nullptr;
    }
    return verdict == Verdict::Failed ? "failure" : IsBad(verdict) ? "error" : "skipped";
}

void AddCase(pugi::xml_node suite, const Item& item) {
    pugi::xml_node test = suite.append_child("testcase");
    Set(test, "classname", suite.attribute("name").value());
    Set(test, "name", item.name);
    Set(test, "time", fmt::format("{:.6f}", item.seconds.value_or(0)));
    const char* element = GetElement(item.verdict);
    if (element == nullptr) {
        return;
    }
    pugi::xml_node outcome = test.append_child(element);
    Set(outcome, "message", fmt::format("{}: {}", ToString(item.verdict), item.reason));
    if (IsBad(item.verdict)) {
        Set(outcome, "type", ToString(item.verdict));
        outcome.text() = ToXml(item.text + "\n" + Platform::QuoteForShell(item.repro)).c_str();
    }
}

void Count(pugi::xml_node suite, const char* attribute, const char* element) {
    const auto tests = suite.children("testcase");
    Set(suite, attribute, std::ranges::count_if(tests, [&](const pugi::xml_node& test) {
            return *element == '\0' || test.child(element);
        }));
}

void AddSuite(pugi::xml_node root, const std::string& name, const std::vector<const Item*>& items) {
    pugi::xml_node suite = root.append_child("testsuite");
    Set(suite, "name", name);
    double seconds = 0;
    for (const Item* item : items) {
        AddCase(suite, *item);
        seconds += item->seconds.value_or(0);
    }
    Count(suite, "tests", "");
    Count(suite, "failures", "failure");
    Count(suite, "errors", "error");
    Count(suite, "skipped", "skipped");
    Set(suite, "time", fmt::format("{:.6f}", seconds));
}

}  // namespace

std::string RenderHtml(const std::vector<NamedReport>& reports) {
    Json list = Json::array();
    for (const auto& [name, report] : reports) {
        list.push_back(ToJson(report));
        list.back()["source"] = name;
    }
    // Nothing in the data may end the element that holds it.
    const std::string data = boost::replace_all_copy(Render(list), "<", "\\u003c");
    std::string page = PAGE;
    return page.replace(page.find(PLACEHOLDER), PLACEHOLDER.size(), data);
}

std::string RenderJunit(const std::vector<NamedReport>& reports) {
    std::map<std::string, std::vector<const Item*>> suites;
    for (const auto& [name, report] : reports) {
        const std::string prefix = reports.size() > 1 ? name + ": " : "";
        for (const Item& item : report.items) {
            suites[prefix + item.factory + item.implementation].push_back(&item);
        }
    }
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("testsuites");
    for (const auto& [name, items] : suites) {
        AddSuite(root, name, items);
    }
    std::ostringstream text;
    document.save(text, "  ");
    return text.str();
}

}  // namespace Tarnex::Assay
