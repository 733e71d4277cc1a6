#include <string_view>

#include "assay/Report.h"
#include "assay/ReportKeys.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::ItemKind;

Json EndToJson(const Parent::RunEnd& end) {
    if (const auto* exited = std::get_if<Parent::ExitStatus>(&end)) {
        return {{"status", exited->status}};
    }
    if (const auto* killed = std::get_if<Parent::KilledBy>(&end)) {
        return {{"signal", killed->signal}};
    }
    return {{"deadline", std::get<Parent::OverDeadline>(end).seconds}};
}

Json RunsToJson(const std::vector<Parent::RunFacts>& runs) {
    Json list = Json::array();
    for (const Parent::RunFacts& run : runs) {
        list.push_back(
            {{"arguments", run.arguments}, {"end", EndToJson(run.end)}, {"seconds", run.seconds}});
    }
    return list;
}

Json ItemsToJson(const std::vector<Item>& items) {
    Json list = Json::array();
    for (const Item& item : items) {
        list.push_back(ToJson(item));
    }
    return list;
}

Json CountKind(const std::vector<Item>& items, ItemKind kind) {
    std::vector<Item> ofKind;
    for (const Item& item : items) {
        if (item.kind == kind) {
            ofKind.push_back(item);
        }
    }
    Json counts = Json::object();
    for (const auto& [verdict, count] : CountVerdicts(ofKind)) {
        counts[std::string(ToString(verdict))] = count;
    }
    return counts;
}

}  // namespace

Totals CountVerdicts(const std::vector<Item>& items) {
    Totals totals;
    for (const Item& item : items) {
        ++totals[item.verdict];
    }
    return totals;
}

Json ToJson(const Parent::FileFacts& facts) {
    return {{"path", facts.path},
            {"size", facts.size},
            {"modified", facts.modified},
            {"build_id", facts.buildId}};
}

Json ToJson(const Item& item) {
    Json json;
    json["kind"] = GetKindName(item.kind);
    VisitTexts(item, [&](const char* key, const std::string& text) { json[key] = text; });
    json["file"] = item.file ? ToJson(*item.file) : Json();
    json["verdict"] = ToString(item.verdict);
    json["seconds"] = item.seconds ? Json(*item.seconds) : Json();
    json["carried"] = item.carried;
    VisitLists(item, [&](const char* key, const auto& list) { json[key] = list; });
    return json;
}

Json TotalsToJson(const std::vector<Item>& items) {
    Json totals;
    for (const ItemKind kind : {ItemKind::Plugin, ItemKind::Codec}) {
        totals[GetKindName(kind)] = CountKind(items, kind);
    }
    return totals;
}

Json ToJson(const Report& report) {
    return {{"schema", SCHEMA},
            {"complete", report.complete},
            {"problem", report.problem},
            {"notes", report.notes},
            {"started", report.started},
            {"seconds", report.seconds},
            {"program", {{"name", "assay"}, {"version", report.version}}},
            {"machine", report.machine},
            {"installation", report.installation},
            {"options", report.options},
            {"environment", report.environment},
            {"items", ItemsToJson(report.items)},
            {"runs", RunsToJson(report.runs)},
            {"totals", TotalsToJson(report.items)}};
}

std::string Render(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace Tarnex::Assay
