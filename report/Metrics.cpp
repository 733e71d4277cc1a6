#include "report/Metrics.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <iterator>
#include <set>

#include "core/support/Exception.h"
#include "report/ItemKeys.h"
#include "report/Wording.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;

/// As the format wants it between quotes.
std::string Escape(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\n') {
            escaped += "\\n";
            continue;
        }
        if (c == '"' || c == '\\') {
            escaped += '\\';
        }
        escaped += c;
    }
    return escaped;
}

/// Another version of a package is no other series.
std::string_view WithoutVersion(std::string_view package) {
    return package.substr(0, package.find(' '));
}

/// Seconds since 1970.
time_t ParseTime(const std::string& text) {
    tm time{};
    const char* end = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
    if (end == nullptr || (*end != 'Z' && *end != '.')) {
        throw Exception(fmt::format("\"{}\" isn't the time of a check", text));
    }
    return timegm(&time);
}

/// Gathers the text, metric by metric.
class Writer {
public:
    void Begin(const char* metric, const char* help) {
        name = metric;
        fmt::format_to(std::back_inserter(text), "# HELP {0} {1}\n# TYPE {0} gauge\n", name, help);
    }

    template <class Value>
    void Add(const Value& value, const std::string& labels = "") {
        fmt::format_to(std::back_inserter(text), "{}{} {}\n", name, labels, value);
    }

    template <class Value>
    void AddOne(const char* metric, const char* help, const Value& value) {
        Begin(metric, help);
        Add(value);
    }

    std::string text;

private:
    const char* name = "";
};

void WriteCounts(Writer& writer, const std::vector<Item>& items) {
    const Json totals = CountVerdicts(items);
    writer.Begin("assayer_items", "Items of the last check, accepted ones included.");
    for (const auto& [kind, counts] : totals.items()) {
        for (const std::string_view verdict : Parent::GetVerdictNames()) {
            writer.Add(counts.value(std::string(verdict), 0),
                       fmt::format(R"({{kind="{}",verdict="{}"}})", kind, verdict));
        }
    }
}

/// Worst first, each once: a series that comes twice spoils the whole file for its reader.
std::vector<std::string> LabelBadItems(std::vector<Item> items) {
    std::erase_if(items, [](const Item& item) { return !IsBad(item.verdict) || item.accepted; });
    std::ranges::stable_sort(items, {}, [](const Item& item) { return GetRank(item.verdict); });
    std::vector<std::string> all;
    std::set<std::pair<Parent::ItemKind, std::string>> seen;
    for (const Item& item : items) {
        if (seen.emplace(item.kind, item.name).second) {
            all.push_back(fmt::format(R"({{kind="{}",name="{}",verdict="{}",package="{}"}})",
                                      KIND_NAMES[static_cast<std::size_t>(item.kind)],
                                      Escape(item.name), ToString(item.verdict),
                                      Escape(WithoutVersion(item.package))));
        }
    }
    return all;
}

void WriteBadItems(Writer& writer, const std::vector<Item>& items) {
    const auto bad = LabelBadItems(items);
    const std::size_t shown = std::min(bad.size(), MOST_BAD_ITEMS);
    writer.Begin("assayer_bad_item", "1 for each bad item of the last check that isn't accepted.");
    for (std::size_t i = 0; i < shown; ++i) {
        writer.Add(1, bad[i]);
    }
    writer.AddOne("assayer_bad_items_left_out", "Bad items that have no series of their own.",
                  bad.size() - shown);
}

}  // namespace

std::string RenderMetrics(const Report& report) {
    Writer writer;
    WriteCounts(writer, report.items);
    writer.AddOne("assayer_accepted_items", "Bad items that are on the list of accepted ones.",
                  std::ranges::count(report.items, true, &Item::accepted));
    WriteBadItems(writer, report.items);
    writer.AddOne("assayer_check_complete", "1 if the last check reached every item.",
                  report.complete ? 1 : 0);
    writer.AddOne("assayer_check_seconds", "How long the last check took.", report.seconds);
    writer.AddOne("assayer_check_timestamp_seconds", "When the last check began, since 1970.",
                  ParseTime(report.started));
    writer.Begin("assayer_build_info", "The version of the program that made the last check.");
    writer.Add(1, fmt::format(R"({{version="{}"}})", Escape(report.program.value("version", ""))));
    return writer.text;
}

}  // namespace Tarnex::Reports
