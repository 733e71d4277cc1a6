#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <pugixml.hpp>
#include <sstream>

#include "assay/Renderers.h"
#include "assay/Text.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;

/// XML can't hold most control characters, not even as references; two code points neither.
std::string ToXml(std::string text) {
    std::ranges::replace_if(
        text, [](unsigned char c) { return c < ' ' && c != '\n' && c != '\t'; }, '?');
    for (const char* noCharacter : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (std::size_t at; (at = text.find(noCharacter)) != std::string::npos;) {
            text.replace(at, 3, "?");
        }
    }
    return text;
}

void Set(pugi::xml_node node, const char* name, const std::string& value) {
    node.append_attribute(name) = ToXml(value).c_str();
}

std::string ToSeconds(double seconds) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.6f", seconds);
    return text.data();
}

/// Null: nothing to tell.
const char* GetElement(Verdict verdict) {
    switch (verdict) {
        case Verdict::Good:
        case Verdict::Tolerated:
            return nullptr;
        case Verdict::Failed:
            return "failure";
        case Verdict::Crashed:
        case Verdict::Ended:
        case Verdict::Hung:
        case Verdict::Unsteady:
            return "error";
        case Verdict::NotReached:
        case Verdict::NoMaterial:
        case Verdict::Missing:
            break;
    }
    return "skipped";
}

std::string GetMessage(const Item& item) {
    const std::string verdict(ToString(item.verdict));
    return item.reason.empty() ? verdict : verdict + ": " + item.reason;
}

std::string GetDetails(const Item& item) {
    const std::string command =
        item.repro.empty() ? "" : "Shown again by: " + QuoteForShell(item.repro);
    return Join({item.text, command}, "\n");
}

void AddOutcome(pugi::xml_node node, const Item& item) {
    if (const char* element = GetElement(item.verdict)) {
        pugi::xml_node outcome = node.append_child(element);
        Set(outcome, "message", GetMessage(item));
        if (std::string_view(element) != "skipped") {
            Set(outcome, "type", std::string(ToString(item.verdict)));
            outcome.text() = ToXml(GetDetails(item)).c_str();
        }
    }
}

class Suite {
public:
    Suite(pugi::xml_node parent, const std::string& name)
        : name(name), node(parent.append_child("testsuite")) {
        Set(node, "name", name);
    }

    void Add(const Item& item) {
        pugi::xml_node one = node.append_child("testcase");
        Set(one, "classname", name);
        Set(one, "name", item.name);
        Set(one, "time", ToSeconds(item.seconds.value_or(0)));
        AddOutcome(one, item);
        seconds += item.seconds.value_or(0);
        const char* element = GetElement(item.verdict);
        ++counts[element == nullptr ? "passed" : element];
    }

    void Close() {
        node.append_attribute("tests") = std::distance(node.begin(), node.end());
        node.append_attribute("failures") = counts["failure"];
        node.append_attribute("errors") = counts["error"];
        node.append_attribute("skipped") = counts["skipped"];
        Set(node, "time", ToSeconds(seconds));
    }

private:
    std::string name;
    pugi::xml_node node;
    std::map<std::string, int> counts;
    double seconds = 0;
};

std::string GetSuiteName(const Item& item) {
    return item.kind == Parent::ItemKind::Plugin ? item.factory : item.implementation;
}

void AddSuites(pugi::xml_node root, const std::string& prefix, const std::vector<Item>& items) {
    std::map<std::string, Suite> suites;
    for (const Item& item : items) {
        const std::string name = prefix + GetSuiteName(item);
        suites.try_emplace(name, root, name).first->second.Add(item);
    }
    for (auto& [name, suite] : suites) {
        suite.Close();
    }
}

}  // namespace

std::string RenderJunit(const std::vector<NamedReport>& reports) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("testsuites");
    for (const auto& [name, report] : reports) {
        AddSuites(root, reports.size() > 1 ? name + ": " : "", report.items);
    }
    std::ostringstream text;
    document.save(text, "  ");
    return text.str();
}

}  // namespace Tarnex::Assay
