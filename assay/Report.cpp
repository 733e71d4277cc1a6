#include "assay/Report.h"

#include <fmt/format.h>
#include <boost/filesystem.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

#include "core/support/Exception.h"

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

using Assay::Json;

constexpr std::array<std::string_view, 2> KINDS{"plugin", "codec"};

void to_json(Json& to, ItemKind kind) {
    to = KINDS.at(static_cast<std::size_t>(kind));
}

void from_json(const Json& from, ItemKind& kind) {
    const auto found = std::ranges::find(KINDS, from.get<std::string>());
    if (found == KINDS.end()) {
        throw Exception("there is no kind " + from.dump());
    }
    kind = static_cast<ItemKind>(found - KINDS.begin());
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
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Item, kind, name, factory, coder, implementation, codec, input,
                                   file, verdict, reason, text, seconds, phase, carried, company,
                                   spoils, repro)

}  // namespace Tarnex::Parent

namespace Tarnex::Assay {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Report, schema, complete, problem, notes, started, seconds,
                                   program, machine, installation, options, environment, items,
                                   runs)

namespace {

/// The library tells what is wrong, not of which item.
void RequireItems(const Json& items) {
    std::size_t number = 0;
    try {
        for (const Json& item : items) {
            static_cast<void>(item.get<Parent::Item>());
            ++number;
        }
    } catch (const std::exception& error) {
        throw Exception(fmt::format("item {}: {}", number, error.what()));
    }
}

std::string ReadText(const boost::filesystem::path& path) {
    errno = boost::filesystem::is_directory(path) ? EISDIR : 0;
    std::ifstream file(path, std::ios::binary);
    if (!file || errno == EISDIR) {
        throw Exception(std::strerror(errno));
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The library's text without its own number.
std::string Explain(const Json::exception& error) {
    const std::string text = error.what();
    return text.substr(text.find(' ') + 1);
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

Json ToJson(const Report& report) {
    Json json = report;
    json["totals"] = CountVerdicts(report.items);
    return json;
}

Json CountVerdicts(const std::vector<Parent::Item>& items) {
    Json totals{{"plugin", Json::object()}, {"codec", Json::object()}};
    for (const Parent::Item& item : items) {
        Json& count = totals[Json(item.kind)][std::string(ToString(item.verdict))];
        count = count.is_null() ? 1 : count.get<int>() + 1;
    }
    return totals;
}

std::string Render(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Report ParseReport(const std::string& text) {
    try {
        const Json json = Json::parse(text);
        if (const Json& schema = json.at("schema"); schema != SCHEMA) {
            throw Exception(fmt::format("a report of schema {}; this program reads schema {}",
                                        schema.dump(), SCHEMA));
        }
        RequireItems(json.at("items"));
        return json;
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

}  // namespace Tarnex::Assay
