#include <fmt/format.h>

#include <boost/filesystem/path.hpp>
#include <map>
#include <set>

#include "report/Compare.h"

namespace Tarnex::Reports {
namespace {

using Lines = std::vector<std::string>;

std::string ToText(const Json& json) {
    const std::string text = json.is_string() ? json.get<std::string>() : Render(json);
    return json.is_null() || text.empty() ? "none" : text;
}

Json Get(const Json& json, const std::string& key) {
    return json.is_object() && json.contains(key) ? json[key] : Json();
}

/// Goes down into objects, so that a line names the thing that changed alone.
void CompareJson(const std::string& name, const Json& before, const Json& after, Lines& lines) {
    if (before == after) {
        return;
    }
    if (!before.is_object() && !after.is_object()) {
        lines.push_back(fmt::format("{}: {} -> {}", name, ToText(before), ToText(after)));
        return;
    }
    Json keys = before.is_object() ? before : Json::object();
    keys.update(after.is_object() ? after : Json::object());
    for (const auto& [key, value] : keys.items()) {
        CompareJson(key, Get(before, key), Get(after, key), lines);
    }
}

/// A library's versions, by its path without the version.
using Versions = std::map<std::string, std::map<std::string, std::string>>;

Versions FindLibraries(const Report& report) {
    Versions found;
    std::set<std::string> modules;
    for (const Parent::Item& item : report.items) {
        modules.insert(item.file ? item.file->path : "");
    }
    for (const FileState& file : report.ground.files) {
        const std::size_t end = file.path.rfind(".so");
        if (end != std::string::npos && !modules.contains(file.path)) {
            found[file.path.substr(0, end)][file.path] =
                fmt::format("{} {}", file.size, file.buildId);
        }
    }
    return found;
}

std::string JoinNames(const std::map<std::string, std::string>& versions) {
    std::string names;
    for (const auto& [path, state] : versions) {
        names.append(names.empty() ? "" : ", ");
        names += boost::filesystem::path(path).filename().string();
    }
    return names;
}

/// A library that only one of the checks needed didn't change.
void CompareLibraries(const Report& before, const Report& after, Lines& lines) {
    const Versions then = FindLibraries(before);
    for (const auto& [stem, versions] : FindLibraries(after)) {
        const auto old = then.find(stem);
        if (old == then.end() || old->second == versions) {
            continue;
        }
        const std::string one = JoinNames(old->second);
        const std::string two = JoinNames(versions);
        lines.push_back(one == two ? fmt::format("{} changed", stem + two.substr(two.find(".so")))
                                   : fmt::format("library: {} -> {}", one, two));
    }
}

void ComparePackages(const Report& before, const Report& after, Lines& lines) {
    std::set<std::string> told;
    for (const Parent::Item& item : after.items) {
        const Parent::Item* old = FindItem(before, item);
        if (old != nullptr && !old->package.empty() && !item.package.empty() &&
            old->package != item.package && told.insert(item.package).second) {
            lines.push_back(fmt::format("package: {} -> {}", old->package, item.package));
        }
    }
}

}  // namespace

std::vector<std::string> CompareMachines(const Report& before, const Report& after) {
    Lines lines;
    CompareJson("machine", before.environment, after.environment, lines);
    CompareLibraries(before, after, lines);
    ComparePackages(before, after, lines);
    return lines;
}

}  // namespace Tarnex::Reports
