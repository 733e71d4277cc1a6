// Reads what is known with another library than all else is read with, because a host waits for it.

#include <fmt/format.h>
#include <simdjson.h>

#include <algorithm>
#include <cstdlib>

#include "core/support/Exception.h"
#include "report/ItemKeys.h"
#include "report/Known.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using simdjson::dom::element;

std::string ToText(const element& json) {
    return std::string(json.get_string().value());
}

void Read(const element& json, std::string& to) {
    to = json.get_string().value();
}

void Read(const element& json, bool& to) {
    to = json;
}

void Read(const element& json, std::optional<double>& to) {
    to = json.is_null() ? std::nullopt : std::optional<double>(json.get_double().value());
}

void Read(const element& json, std::vector<std::string>& to) {
    for (const element text : json.get_array()) {
        to.push_back(ToText(text));
    }
}

void Read(const element& json, std::optional<Parent::FileFacts>& to) {
    if (!json.is_null()) {
        to = {ToText(json["path"]), json["size"], ToText(json["modified"]),
              ToText(json["build_id"])};
    }
}

/// The place of a number in its table.
std::size_t ToPlace(const element& json, std::size_t size) {
    const std::uint64_t place = json;
    if (place >= size) {
        throw Exception("the ground names a place beyond the end of its table");
    }
    return place;
}

Json ToJson(const element& json) {
    return Json::parse(simdjson::minify(json));
}

void ReadKind(std::string_view name, Item& item) {
    const auto* kind = std::ranges::find(KIND_NAMES, name);
    if (kind == std::end(KIND_NAMES)) {
        throw Exception(fmt::format("there is no kind \"{}\"", name));
    }
    item.kind = static_cast<Parent::ItemKind>(kind - std::begin(KIND_NAMES));
}

void ReadVerdict(std::string_view name, Item& item) {
    const auto verdict = Parent::ParseVerdict(name);
    if (!verdict) {
        throw Exception(fmt::format("there is no verdict \"{}\"", name));
    }
    item.verdict = *verdict;
}

/// A key that isn't in the tables is of a later program.
void ReadOther(std::string_view key, const element& value, Item& item) {
    VisitItemKeys([&](const auto& keys) {
        for (const auto& [name, member] : keys) {
            if (key == name) {
                Read(value, item.*member);
                return;
            }
        }
    });
}

Item ReadItem(const element& json) {
    Item item;
    ReadKind(json["kind"], item);
    ReadVerdict(json["verdict"], item);
    static_cast<void>(json["name"].value());
    for (const auto& [key, value] : json.get_object()) {
        ReadOther(key, value, item);
    }
    return item;
}

Libraries ReadLibraries(const element& json, const GroundTable& table) {
    Libraries libraries{ToPlace(json["environment"], table.environments.size()), {}, {}};
    for (const element file : json["files"].get_array()) {
        libraries.files.push_back(ToPlace(file, table.files.size()));
    }
    for (const auto& [name, path] : json["names"].get_object()) {
        libraries.names.emplace(name, ToText(path));
    }
    return libraries;
}

std::optional<Ground> ReadGround(const element& json, const GroundTable& table) {
    if (json.is_null()) {
        return std::nullopt;
    }
    Ground ground{ToPlace(json.at(0), table.libraries.size()), {}};
    std::size_t number = 0;
    for (const element file : json.get_array()) {
        if (number++ > 0) {
            ground.files.push_back(ToPlace(file, table.files.size()));
        }
    }
    return ground;
}

GroundTable ReadTable(const element& json) {
    GroundTable table;
    for (const element environment : json["environments"].get_array()) {
        table.environments.push_back(ToJson(environment));
    }
    for (const element file : json["files"].get_array()) {
        table.files.push_back({ToText(file["path"]), file["device"], file["inode"], file["size"],
                               file["modified"], file["changed"], ToText(file["build_id"])});
    }
    for (const element libraries : json["libraries"].get_array()) {
        table.libraries.push_back(ReadLibraries(libraries, table));
    }
    for (const element ground : json["items"].get_array()) {
        table.items.push_back(ReadGround(ground, table));
    }
    return table;
}

void ReadOffer(const element& json, Known& known) {
    if (!json.is_null()) {
        Offer offer{ToPlace(json["libraries"], known.ground.libraries.size()), {}};
        for (const element module : json["modules"].get_array()) {
            offer.modules.insert(ToText(module));
        }
        known.offer = offer;
    }
}

std::vector<Item> ReadItems(const element& json) {
    std::vector<Item> items;
    try {
        for (const element item : json.get_array()) {
            items.push_back(ReadItem(item));
        }
    } catch (const std::exception& error) {
        throw Exception(fmt::format("item {}: {}", items.size(), error.what()));
    }
    return items;
}

/// The same refusals as for a report.
void RequireSchema(const element& json) {
    std::int64_t schema = 0;
    if (!json.is_object() || json["schema"].get(schema) != simdjson::SUCCESS || schema != SCHEMA) {
        Json head = json.is_object() ? Json::object() : Json::array();
        for (const char* key : {"schema", "program"}) {
            if (element value; json.is_object() && json[key].get(value) == simdjson::SUCCESS) {
                head[key] = ToJson(value);
            }
        }
        Reports::RequireSchema(head);
    }
}

}  // namespace

Known ParseKnown(const std::string& text) {
    try {
        simdjson::dom::parser parser;
        const element json = parser.parse(text);
        RequireSchema(json);
        Known known;
        known.items = ReadItems(json["items"]);
        if (element ground; json["ground"].get(ground) == simdjson::SUCCESS) {
            known.ground = ReadTable(ground);
        }
        known.ground.items.resize(known.items.size());
        if (simdjson::dom::object listed; json["listed"].get(listed) == simdjson::SUCCESS) {
            for (const auto& [plugin, exercises] : listed) {
                Read(exercises, known.listed[std::string(plugin)]);
            }
        }
        if (element offer; json["offer"].get(offer) == simdjson::SUCCESS) {
            ReadOffer(offer, known);
        }
        CompleteFiles(known);
        return known;
    } catch (const simdjson::simdjson_error& error) {
        throw Exception(std::string("not a whole report: ") + error.what());
    }
}

}  // namespace Tarnex::Reports
