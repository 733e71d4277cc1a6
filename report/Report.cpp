#include "report/Report.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/support/Exception.h"
#include "report/ItemKeys.h"

namespace nlohmann {

template <class Value>
struct adl_serializer<std::optional<Value>> {
    static void to_json(json& to, const std::optional<Value>& from) {
        to = from ? json(*from) : json();
    }
    static void from_json(const json& from, std::optional<Value>& to) {
        to = from.is_null() ? std::nullopt : std::optional<Value>(from.get<Value>());
    }
};

}  // namespace nlohmann

// One table of keys for reading and writing each type.
namespace Tarnex::Parent {

using Reports::Json;

void to_json(Json& to, ItemKind kind) {
    to = Reports::KIND_NAMES[static_cast<std::size_t>(kind)];
}

void from_json(const Json& from, ItemKind& kind) {
    const auto* found = std::ranges::find(Reports::KIND_NAMES, from.get<std::string>());
    if (found == std::end(Reports::KIND_NAMES)) {
        throw Exception("there is no kind " + from.dump());
    }
    kind = static_cast<ItemKind>(found - std::begin(Reports::KIND_NAMES));
}

void to_json(Json& to, Verdict verdict) {
    to = ToString(verdict);
}

void from_json(const Json& from, Verdict& verdict) {
    const auto parsed = ParseVerdict(from.get<std::string>());
    if (!parsed) {
        throw Exception("there is no verdict " + from.dump());
    }
    verdict = *parsed;
}

void to_json(Json& to, const FileFacts& facts) {
    to = {{"path", facts.path},
          {"size", facts.size},
          {"modified", facts.modified},
          {"build_id", facts.buildId}};
}

/// The library takes any number for an integer, also one that has no room in it.
std::uint64_t ToNatural(const Json& from, std::uint64_t most) {
    if (!from.is_number_unsigned() || from.get<std::uint64_t>() > most) {
        throw Exception(fmt::format("{} isn't a whole number from 0 to {}", from.dump(), most));
    }
    return from;
}

void from_json(const Json& from, FileFacts& facts) {
    facts = {from.at("path"), ToNatural(from.at("size"), UINT64_MAX), from.at("modified"),
             from.at("build_id")};
}

void to_json(Json& to, const RunEnd& end) {
    to = end.status   ? Json{{"status", *end.status}}
         : end.signal ? Json{{"signal", *end.signal}}
                      : Json{{"deadline", end.deadline.value_or(0)}};
}

void from_json(const Json& from, RunEnd& end) {
    if (from.contains("status")) {
        end.status = static_cast<int>(ToNatural(from.at("status"), 255));
    } else if (from.contains("signal")) {
        end.signal = from.at("signal").get<std::string>();
    } else {
        end.deadline = from.at("deadline").get<double>();
    }
}

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(RunFacts, arguments, end, seconds)
namespace {

template <class Value>
bool IsUsual(const Value& value) {
    return value == Value();
}

}  // namespace

Json WriteItem(const Item& item, bool lean) {
    Json json{{"kind", item.kind}, {"verdict", item.verdict}};
    Reports::VisitItemKeys([&](const auto& keys) {
        for (const auto& [name, member] : keys) {
            if (!lean || !IsUsual(item.*member)) {
                json[name] = item.*member;
            }
        }
    });
    return json;
}

void to_json(Json& to, const Item& item) {
    to = WriteItem(item, false);
}

void from_json(const Json& from, Item& item) {
    from.at("kind").get_to(item.kind);
    from.at("name").get_to(item.name);
    from.at("verdict").get_to(item.verdict);
    Reports::VisitItemKeys([&](const auto& keys) {
        for (const auto& [name, member] : keys) {
            if (const auto found = from.find(name); found != from.end()) {
                found->get_to(item.*member);
            }
        }
    });
}

}  // namespace Tarnex::Parent

namespace Tarnex::Reports {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Report, schema, complete, problem, notes, started, seconds,
                                   program, machine, installation, options, environment, runs)

namespace {

std::string GetText(const Json& json, const char* object, const char* key) {
    const Json inner = json.value(object, Json::object());
    return inner.is_object() && inner.contains(key) && inner[key].is_string()
               ? inner[key].get<std::string>()
               : "an unknown program";
}

}  // namespace

const Parent::Item* FindItem(const Report& report, const Parent::Item& like) {
    const auto found = std::ranges::find_if(report.items, [&](const Parent::Item& item) {
        return item.kind == like.kind && item.name == like.name;
    });
    return found == report.items.end() ? nullptr : &*found;
}

Json ToJson(const Parent::FileFacts& facts) {
    return facts;
}

Json ToJson(const Parent::Item& item) {
    return item;
}

Json ToLeanJson(const Parent::Item& item) {
    return WriteItem(item, true);
}

/// The library tells what is wrong, not of which item.
std::vector<Parent::Item> ParseItems(const Json& json) {
    if (!json.is_array()) {
        throw Exception("the items aren't a list");
    }
    std::vector<Parent::Item> items(json.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        try {
            from_json(json.at(i), items[i]);
        } catch (const Json::exception& error) {
            throw Exception(fmt::format("item {}: {}", i, Explain(error)));
        } catch (const Exception& error) {
            throw Exception(fmt::format("item {}: {}", i, error.what()));
        }
    }
    return items;
}

Json ToJson(const Report& report) {
    Json json = report;
    json["bad_end"] = report.badEnd;
    json["items"] = report.items;
    json["totals"] = CountVerdicts(report.items);
    return json;
}

Json ToSavedJson(const Report& report) {
    Json json = ToJson(report);
    json["ground"] = ToJson(report.ground);
    return json;
}

Json CountVerdicts(const std::vector<Parent::Item>& items) {
    Json totals{
        {"plugin", Json::object()}, {"exercise", Json::object()}, {"codec", Json::object()}};
    for (const Parent::Item& item : items) {
        Json& count = totals[Json(item.kind)][std::string(ToString(item.verdict))];
        count = count.is_null() ? 1 : count.get<int>() + 1;
    }
    return totals;
}

std::string Render(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

void RequireSchema(const Json& json) {
    if (!json.is_object() || !json.contains("schema")) {
        throw Exception("not a report of assay");
    }
    if (const Json& schema = json.at("schema"); schema != SCHEMA) {
        throw Exception(fmt::format(
            "a report of schema {}, written by {} {}; this program reads schema {}", Render(schema),
            GetText(json, "program", "name"), GetText(json, "program", "version"), SCHEMA));
    }
}

Report ParseReport(const std::string& text) {
    const Json json = ParseJson(text);
    RequireSchema(json);
    try {
        Report report = json;
        report.badEnd = json.at("bad_end").get<std::string>();
        report.items = ParseItems(json.at("items"));
        report.ground = json.contains("ground")
                            ? ParseGroundTable(json.at("ground"), report.items.size())
                            : GroundTable();
        report.ground.items.resize(report.items.size());
        return report;
    } catch (const Json::exception& error) {
        throw Exception("not a whole report: " + Explain(error));
    }
}

Report ReadReport(const boost::filesystem::path& path) {
    try {
        return ParseReport(ReadText(path));
    } catch (const Exception& error) {
        throw Exception(path.string() + ": " + error.what());
    }
}

}  // namespace Tarnex::Reports
