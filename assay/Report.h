#pragma once

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "parent/Check.h"
#include "parent/Item.h"

namespace Tarnex::Assay {

/// Keeps the keys in the order in which people should read them.
using Json = nlohmann::ordered_json;

/// What a check found, as it is saved; doc/report.md describes the form.
struct Report {
    bool complete = false;
    std::string problem;  ///< why it isn't complete
    std::vector<std::string> notes;
    std::string started;  ///< UTC, ISO 8601
    double seconds = 0;
    std::string version;  ///< of the program that wrote it
    Json machine = Json::object();
    std::string installation;
    Json options = Json::object();
    Json environment = Json::object();
    std::vector<Parent::Item> items;
    std::vector<Parent::RunFacts> runs;
};

/// How many items have each verdict; only those verdicts that occur.
using Totals = std::map<Parent::Verdict, std::size_t>;
Totals CountVerdicts(const std::vector<Parent::Item>& items);

Json ToJson(const Parent::FileFacts& facts);
Json ToJson(const Parent::Item& item);
Json TotalsToJson(const std::vector<Parent::Item>& items);
Json ToJson(const Report& report);

/// As text; bytes that aren't UTF-8 are replaced. `indent` -1: all on one line.
std::string Render(const Json& json, int indent = -1);

/// Throws `Tarnex::Exception` with the place and the reason for a text that isn't a whole report of
/// the schema that this program writes.
Report ParseReport(const std::string& text);

/// The same for a file; the exception names it.
Report ReadReport(const std::filesystem::path& path);

}  // namespace Tarnex::Assay
