#include "report/HtmlPage.h"

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>

#include "report/PageTemplate.h"
#include "report/Wording.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::Verdict;

constexpr std::string_view PLACEHOLDER = "/*DATA*/{}";
constexpr std::int32_t NOT_THERE = -1;

/// What is the same on all hosts.
Json DescribeItem(const Item& item) {
    return {{"kind", item.kind == Parent::ItemKind::Codec      ? "codec"
                     : item.kind == Parent::ItemKind::Exercise ? "exercise"
                                                               : "plugin"},
            {"name", item.name},
            {"label", NameItem(item)},
            {"interface", item.interface.empty() ? item.factory : item.interface},
            {"plugin", item.plugin},
            {"title", item.title},
            {"coder", item.coder},
            {"implementation", NameImplementation(item.implementation)},
            {"codec", NameCodec(item.codec)}};
}

/// Which outcomes count as one: times, dates, and the words of a crash differ from run to run.
std::string GetDifference(const Item& item) {
    return Render({ToString(item.verdict),
                   item.verdict == Verdict::Failed ? item.reason : std::string(), item.package,
                   item.company, item.spoils, item.phase, item.input, item.accepted});
}

Json DescribeOutcome(const Item& item) {
    Json outcome{{"verdict", ToString(item.verdict)}};
    const auto add = [&](const char* key, const auto& value) {
        if (!value.empty()) {
            outcome[key] = value;
        }
    };
    add("reason", DescribeReason(item));
    add("text", item.text);
    add("phase", item.phase);
    add("input", item.input);
    add("package", item.package);
    add("depth", item.depth);
    add("checked", item.checked);
    add("path", item.file ? item.file->path : "");
    add("remarks", item.remarks);
    add("company", item.company);
    add("spoils", item.spoils);
    add("repro", item.repro);
    if (item.seconds) {
        outcome["seconds"] = *item.seconds;
    }
    if (item.carried) {
        outcome["carried"] = true;
    }
    if (item.accepted) {
        outcome["accepted"] = true;
    }
    return outcome;
}

/// All verdicts, the worst first.
Json DescribeLegend() {
    Json legend = Json::array();
    for (const Verdict verdict : GetVerdicts()) {
        legend.push_back({{"verdict", ToString(verdict)},
                          {"means", ExplainVerdict(verdict)},
                          {"bad", IsBad(verdict)}});
    }
    return legend;
}

}  // namespace

void HtmlPage::Add(const std::string& name, const Report& report) {
    Host host;
    host.facts = {{"source", name},
                  {"complete", report.complete},
                  {"problem", report.problem},
                  {"notes", report.notes},
                  {"started", report.started},
                  {"seconds", report.seconds},
                  {"machine", report.machine},
                  {"surroundings", FindSurroundings(report)}};
    host.outcomes.assign(rows.size(), NOT_THERE);
    for (const Item& item : report.items) {
        const std::int32_t number = FindRow(item);
        Row& row = rows[static_cast<std::size_t>(number)];
        const auto [found, isNew] = row.numbers.try_emplace(
            GetDifference(item), static_cast<std::int32_t>(row.outcomes.size()));
        if (isNew) {
            row.outcomes.push_back(DescribeOutcome(item));
        }
        host.outcomes.resize(rows.size(), NOT_THERE);
        host.outcomes[static_cast<std::size_t>(number)] = found->second;
    }
    runs = hosts.empty() ? ToJson(report).at("runs") : Json::array();
    hosts.push_back(std::move(host));
}

std::string HtmlPage::Render() const {
    const auto usual = CountUsual();
    Json data{
        {"version", ASSAYER_VERSION},   {"legend", DescribeLegend()}, {"runs", runs},
        {"surroundings", surroundings}, {"rows", Json::array()},      {"hosts", Json::array()}};
    for (std::size_t row = 0; row < rows.size(); ++row) {
        Json& item = data["rows"].emplace_back(rows[row].item);
        item["outcomes"] = rows[row].outcomes;
        item["usual"] = usual[row];
    }
    for (const Host& host : hosts) {
        Json& facts = data["hosts"].emplace_back(host.facts);
        Json& differs = facts["differs"] = Json::array();
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const std::int32_t outcome =
                row < host.outcomes.size() ? host.outcomes[row] : NOT_THERE;
            if (outcome != usual[row]) {
                differs.push_back({row, outcome});
            }
        }
    }
    // Nothing in the data may end the element that holds it.
    const std::string text = boost::replace_all_copy(Reports::Render(data), "<", "\\u003c");
    std::string page = PAGE;
    return page.replace(page.find(PLACEHOLDER), PLACEHOLDER.size(), text);
}

std::int32_t HtmlPage::FindRow(const Item& item) {
    const auto [found, isNew] =
        numbers.try_emplace({item.kind, item.name}, static_cast<std::int32_t>(rows.size()));
    if (isNew) {
        rows.push_back({DescribeItem(item), {}, {}});
    }
    return found->second;
}

/// Hosts of one kind share them.
std::size_t HtmlPage::FindSurroundings(const Report& report) {
    const Json all{{"program", report.program},
                   {"installation", report.installation},
                   {"options", report.options},
                   {"environment", report.environment}};
    const auto found = std::ranges::find(surroundings, all);
    if (found != surroundings.end()) {
        return static_cast<std::size_t>(found - surroundings.begin());
    }
    surroundings.push_back(all);
    return surroundings.size() - 1;
}

/// What most hosts have at each row: only what differs from it is written for a host.
std::vector<std::int32_t> HtmlPage::CountUsual() const {
    std::vector<std::int32_t> usual;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        std::map<std::int32_t, std::size_t> counts;
        for (const Host& host : hosts) {
            ++counts[row < host.outcomes.size() ? host.outcomes[row] : NOT_THERE];
        }
        usual.push_back(std::ranges::max_element(counts, {}, [](const auto& count) {
                            return count.second;
                        })->first);
    }
    return usual;
}

}  // namespace Tarnex::Reports
