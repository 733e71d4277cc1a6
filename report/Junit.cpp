#include "report/Junit.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>
#include <pugixml.hpp>
#include <sstream>

#include "platform/TerminalText.h"
#include "report/Wording.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::Verdict;

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

std::string DescribeWhole(const Item& item) {
    const std::string package = item.package.empty() ? "" : "package: " + item.package + "\n";
    return item.text + "\n" + package + Platform::QuoteForShell(item.repro);
}

/// Null: nothing to tell.
const char* GetElement(const Item& item) {
    if (item.verdict == Verdict::Good || item.verdict == Verdict::Tolerated) {
        return nullptr;
    }
    return !IsBad(item.verdict) || item.accepted ? "skipped"
           : item.verdict == Verdict::Failed     ? "failure"
                                                 : "error";
}

void AddCase(pugi::xml_node suite, const Item& item) {
    pugi::xml_node test = suite.append_child("testcase");
    Set(test, "classname", suite.attribute("name").value());
    Set(test, "name", item.name);
    Set(test, "time", fmt::format("{:.6f}", item.seconds.value_or(0)));
    const char* element = GetElement(item);
    if (element == nullptr) {
        return;
    }
    pugi::xml_node outcome = test.append_child(element);
    const std::string reason = DescribeReason(item);
    Set(outcome, "message",
        fmt::format("{}{}{}", ToString(item.verdict), reason.empty() ? "" : ": ", reason));
    if (IsBad(item.verdict)) {
        Set(outcome, "type", ToString(item.verdict));
        outcome.text() = ToXml(DescribeWhole(item)).c_str();
    }
}

void Count(pugi::xml_node suite, const char* attribute, const char* element) {
    const auto tests = suite.children("testcase");
    Set(suite, attribute, std::ranges::count_if(tests, [&](const pugi::xml_node& test) {
            return *element == '\0' || test.child(element);
        }));
}

void AddSuite(pugi::xml_node root, const std::string& name, const std::vector<Item>& items) {
    pugi::xml_node suite = root.append_child("testsuite");
    Set(suite, "name", name);
    double seconds = 0;
    for (const Item& item : items) {
        AddCase(suite, item);
        seconds += item.seconds.value_or(0);
    }
    Count(suite, "tests", "");
    Count(suite, "failures", "failure");
    Count(suite, "errors", "error");
    Count(suite, "skipped", "skipped");
    Set(suite, "time", fmt::format("{:.6f}", seconds));
}

/// The interface of a plugin or exercise, or the implementation of a codec test, as people say it.
std::string GetSuite(const Item& item) {
    return item.kind == Parent::ItemKind::Codec ? NameImplementation(item.implementation)
           : item.interface.empty()             ? item.factory
                                                : item.interface;
}

}  // namespace

void Junit::Add(const std::string& name, const Report& report) {
    const std::string prefix = several ? name + ": " : "";
    for (const Item& item : report.items) {
        suites[prefix + GetSuite(item)].push_back(item);
    }
}

std::string Junit::Render() const {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("testsuites");
    for (const auto& [name, items] : suites) {
        AddSuite(root, name, items);
    }
    std::ostringstream text;
    document.save(text, "  ");
    return text.str();
}

}  // namespace Tarnex::Reports
