#pragma once

#include <boost/filesystem/path.hpp>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "parent/Check.h"
#include "parent/Item.h"

namespace Tarnex::Assay {

using Json = nlohmann::json;

inline constexpr int SCHEMA = 1;

/// What a check found; the members are the keys of its file, which doc/report.md describes.
struct Report : Parent::CheckResult {
    int schema = SCHEMA;
    std::string started;  ///< UTC, ISO 8601
    double seconds = 0;
    Json program = {{"name", "assay"}, {"version", ASSAYER_VERSION}};
    Json machine;
    std::string installation;
    Json options;
    Json environment;
};

Json ToJson(const Parent::FileFacts& facts);
Json ToJson(const Parent::Item& item);

/// The item of the same kind and name; null if there is none.
const Parent::Item* FindItem(const Report& report, const Parent::Item& like);

/// With the totals.
Json ToJson(const Report& report);

/// By kind, how many items have each verdict; only verdicts that occur.
Json CountVerdicts(const std::vector<Parent::Item>& items);

/// As text, bytes that aren't UTF-8 replaced. `indent` -1: all on one line.
std::string Render(const Json& json, int indent = -1);

/// Throws `Tarnex::Exception` with place and reason for a text that isn't a whole report of the
/// schema that this program writes.
Report ParseReport(const std::string& text);

/// The same for a file, which the exception names.
Report ReadReport(const boost::filesystem::path& path);

}  // namespace Tarnex::Assay
