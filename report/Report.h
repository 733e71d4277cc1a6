#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "parent/Check.h"
#include "parent/Item.h"
#include "report/Ground.h"
#include "report/Reading.h"

namespace Tarnex::Reports {

inline constexpr int SCHEMA = 2;

/// What a check found; the members are the keys of its file, which doc/report.md describes.
struct Report : Parent::CheckResult {
    int schema = SCHEMA;
    std::string started;  ///< UTC, ISO 8601
    double seconds = 0;
    Json program = {{"name", "assay"}, {"version", ASSAYER_VERSION}};
    Json machine;
    std::string installation;
    Json options;
    Json environment;    ///< today's, as `DescribeEnvironment` gives it
    GroundTable ground;  ///< what the verdicts rest on
};

Json ToJson(const Parent::FileFacts& facts);
Json ToJson(const Parent::Item& item);

/// Without the keys whose value is empty, null or false.
Json ToLeanJson(const Parent::Item& item);

/// Reads both forms. Throws `Tarnex::Exception` with the number of the item that is none.
std::vector<Parent::Item> ParseItems(const Json& items);

/// The item of the same kind and name; null if there is none.
const Parent::Item* FindItem(const Report& report, const Parent::Item& like);

/// With the totals, without the ground, which only the next check wants to know.
Json ToJson(const Report& report);

/// What its file holds: all of it.
Json ToSavedJson(const Report& report);

/// By kind, how many items have each verdict; only verdicts that occur.
Json CountVerdicts(const std::vector<Parent::Item>& items);

/// As text, bytes that aren't UTF-8 replaced. `indent` -1: all on one line.
std::string Render(const Json& json, int indent = -1);

/// Throws `Tarnex::Exception` if it isn't an object of ours, or of another schema; the text says
/// which program wrote it.
void RequireSchema(const Json& json);

/// Throws `Tarnex::Exception` with place and reason for a text that isn't a whole report of the
/// schema that this program writes.
Report ParseReport(const std::string& text);

/// The same for a file, which the exception names; "-" is standard input.
Report ReadReport(const boost::filesystem::path& path);

}  // namespace Tarnex::Reports
