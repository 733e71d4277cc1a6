#include "report/Ground.h"

#include <sys/stat.h>

#include <algorithm>

#include "core/support/Exception.h"

namespace Tarnex::Reports {
namespace {

constexpr std::int64_t NANOSECONDS = 1'000'000'000;

std::int64_t ToNanoseconds(const timespec& time) {
    return time.tv_sec * NANOSECONDS + time.tv_nsec;
}

template <class Value>
std::size_t AddOnce(std::map<Value, std::size_t>& places, std::vector<Value>& table,
                    const Value& value) {
    const auto [place, isNew] = places.try_emplace(value, table.size());
    if (isNew) {
        table.push_back(value);
    }
    return place->second;
}

void RequirePlaces(const std::vector<std::size_t>& places, std::size_t size) {
    if (std::ranges::any_of(places, [&](std::size_t place) { return place >= size; })) {
        throw Exception("the ground names a place beyond the end of its table");
    }
}

/// The library takes any number for an unsigned one.
std::vector<std::size_t> ToPlaces(const Json& json) {
    std::vector<std::size_t> places;
    for (const Json& place : json) {
        places.push_back(place.is_number_unsigned() ? place.get<std::size_t>() : SIZE_MAX);
    }
    return places;
}

FileState ToFile(const Json& json) {
    return {json.at("path"),     json.at("device"),  json.at("inode"),   json.at("size"),
            json.at("modified"), json.at("changed"), json.at("build_id")};
}

Libraries ToLibraries(const Json& json, const GroundTable& table) {
    Libraries libraries{ToPlaces(Json::array({json.at("environment")})).front(),
                        ToPlaces(json.at("files")), json.at("names")};
    RequirePlaces({libraries.environment}, table.environments.size());
    RequirePlaces(libraries.files, table.files.size());
    return libraries;
}

/// The first number is that of the libraries, the others are files.
std::optional<Ground> ToGround(const Json& json, const GroundTable& table) {
    if (json.is_null()) {
        return std::nullopt;
    }
    std::vector<std::size_t> places = ToPlaces(json);
    if (places.empty()) {
        throw Exception("the ground of an item is empty");
    }
    const std::size_t libraries = places.front();
    places.erase(places.begin());
    RequirePlaces({libraries}, table.libraries.size());
    RequirePlaces(places, table.files.size());
    return Ground{libraries, places};
}

Json ToJson(const std::optional<Ground>& ground) {
    Json json;
    if (ground) {
        json = Json::array({ground->libraries});
        std::ranges::copy(ground->files, std::back_inserter(json));
    }
    return json;
}

}  // namespace

std::optional<FileState> ReadFileState(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return FileState{path,
                     status.st_dev,
                     status.st_ino,
                     static_cast<std::uint64_t>(status.st_size),
                     ToNanoseconds(status.st_mtim),
                     ToNanoseconds(status.st_ctim),
                     ""};
}

std::size_t GroundBuilder::AddEnvironment(const Json& environment) {
    const auto known = std::ranges::find(table.environments, environment);
    if (known == table.environments.end()) {
        table.environments.push_back(environment);
        return table.environments.size() - 1;
    }
    return static_cast<std::size_t>(known - table.environments.begin());
}

std::size_t GroundBuilder::AddFile(const FileState& file) {
    return AddOnce(files, table.files, file);
}

std::size_t GroundBuilder::AddLibraries(const Libraries& added) {
    Libraries sorted = added;
    std::ranges::sort(sorted.files);
    return AddOnce(libraries, table.libraries, sorted);
}

std::size_t GroundBuilder::AdoptLibraries(const GroundTable& other, std::size_t place) {
    const Libraries& from = other.libraries.at(place);
    Libraries adopted{AddEnvironment(other.environments.at(from.environment)), {}, from.names};
    for (const std::size_t file : from.files) {
        adopted.files.push_back(AddFile(other.files.at(file)));
    }
    return AddLibraries(adopted);
}

std::optional<Ground> GroundBuilder::Adopt(const GroundTable& other,
                                           const std::optional<Ground>& ground) {
    if (!ground) {
        return std::nullopt;
    }
    Ground adopted{AdoptLibraries(other, ground->libraries), {}};
    for (const std::size_t file : ground->files) {
        adopted.files.push_back(AddFile(other.files.at(file)));
    }
    return adopted;
}

Json ToJson(const GroundTable& table) {
    Json files = Json::array();
    for (const FileState& file : table.files) {
        files.push_back({{"path", file.path},
                         {"device", file.device},
                         {"inode", file.inode},
                         {"size", file.size},
                         {"modified", file.modified},
                         {"changed", file.changed},
                         {"build_id", file.buildId}});
    }
    Json libraries = Json::array();
    for (const Libraries& set : table.libraries) {
        libraries.push_back(
            {{"environment", set.environment}, {"files", set.files}, {"names", set.names}});
    }
    Json items = Json::array();
    for (const auto& ground : table.items) {
        items.push_back(ToJson(ground));
    }
    return {{"environments", table.environments},
            {"files", files},
            {"libraries", libraries},
            {"items", items}};
}

GroundTable ParseGroundTable(const Json& json, std::size_t items) {
    GroundTable table;
    table.environments = json.at("environments").get<std::vector<Json>>();
    for (const Json& file : json.at("files")) {
        table.files.push_back(ToFile(file));
    }
    for (const Json& libraries : json.at("libraries")) {
        table.libraries.push_back(ToLibraries(libraries, table));
    }
    for (const Json& ground : json.at("items")) {
        table.items.push_back(ToGround(ground, table));
    }
    table.items.resize(items);
    return table;
}

}  // namespace Tarnex::Reports
