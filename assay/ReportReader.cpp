#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "assay/Report.h"
#include "assay/ReportKeys.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::ItemKind;

/// A value with its place in the report, which an error names.
class Node {
public:
    Node(const Json& json, std::string place) : json(json), place(std::move(place)) {}

    Node At(const std::string& key) const {
        Require(json.is_object(), "not an object");
        const auto found = json.find(key);
        Require(found != json.end(), "no key \"" + key + "\"");
        return {*found, place.empty() ? key : place + "." + key};
    }

    template <class Take>
    void ForEach(Take take) const {
        Require(json.is_array(), "not an array");
        for (std::size_t i = 0; i < json.size(); ++i) {
            take(Node(json[i], place + "[" + std::to_string(i) + "]"));
        }
    }

    std::string Text() const {
        Require(json.is_string(), "not a text");
        return json.get<std::string>();
    }
    bool Bool() const {
        Require(json.is_boolean(), "neither true nor false");
        return json.get<bool>();
    }
    double Number() const {
        Require(json.is_number(), "not a number");
        return json.get<double>();
    }
    std::uint64_t Size() const {
        Require(json.is_number_unsigned(), "not a natural number");
        return json.get<std::uint64_t>();
    }
    Json Object() const {
        Require(json.is_object(), "not an object");
        return json;
    }
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        ForEach([&](const Node& node) { texts.push_back(node.Text()); });
        return texts;
    }
    bool Has(const char* key) const { return json.contains(key); }
    bool IsNull() const { return json.is_null(); }

    void Require(bool condition, const std::string& reason) const {
        if (!condition) {
            throw Exception((place.empty() ? "the report" : place) + ": " + reason);
        }
    }

private:
    const Json& json;
    std::string place;
};

Parent::FileFacts ReadFacts(const Node& node) {
    return {node.At("path").Text(), node.At("size").Size(), node.At("modified").Text(),
            node.At("build_id").Text()};
}

ItemKind ReadKind(const Node& node) {
    const std::string name = node.Text();
    node.Require(name == "plugin" || name == "codec", "neither \"plugin\" nor \"codec\"");
    return name == "plugin" ? ItemKind::Plugin : ItemKind::Codec;
}

Parent::Verdict ReadVerdict(const Node& node) {
    const auto verdict = Parent::ParseVerdict(node.Text());
    node.Require(verdict.has_value(), "not a verdict: \"" + node.Text() + "\"");
    return *verdict;
}

Item ReadItem(const Node& node) {
    Item item;
    item.kind = ReadKind(node.At("kind"));
    VisitTexts(item, [&](const char* key, std::string& text) { text = node.At(key).Text(); });
    if (const Node file = node.At("file"); !file.IsNull()) {
        item.file = ReadFacts(file);
    }
    item.verdict = ReadVerdict(node.At("verdict"));
    if (const Node seconds = node.At("seconds"); !seconds.IsNull()) {
        item.seconds = seconds.Number();
    }
    item.carried = node.At("carried").Bool();
    VisitLists(item, [&](const char* key, auto& list) { list = node.At(key).Texts(); });
    return item;
}

Parent::RunEnd ReadEnd(const Node& node) {
    if (node.Has("status")) {
        const double status = node.At("status").Number();
        node.Require(status >= 0 && status <= 255, "not an exit status");
        return Parent::ExitStatus{static_cast<int>(status)};
    }
    if (node.Has("signal")) {
        return Parent::KilledBy{node.At("signal").Text()};
    }
    return Parent::OverDeadline{node.At("deadline").Number()};
}

Parent::RunFacts ReadRun(const Node& node) {
    return {node.At("arguments").Texts(), ReadEnd(node.At("end")), node.At("seconds").Number()};
}

void RequireSchema(const Node& node) {
    const std::uint64_t schema = node.Size();
    node.Require(schema == SCHEMA, "the report is of schema " + std::to_string(schema) +
                                       ", this program knows schema " + std::to_string(SCHEMA));
}

Report ReadWhole(const Node& node) {
    RequireSchema(node.At("schema"));
    Report report;
    report.complete = node.At("complete").Bool();
    report.problem = node.At("problem").Text();
    report.notes = node.At("notes").Texts();
    report.started = node.At("started").Text();
    report.seconds = node.At("seconds").Number();
    report.version = node.At("program").At("version").Text();
    report.machine = node.At("machine").Object();
    report.installation = node.At("installation").Text();
    report.options = node.At("options").Object();
    report.environment = node.At("environment").Object();
    node.At("items").ForEach([&](const Node& item) { report.items.push_back(ReadItem(item)); });
    node.At("runs").ForEach([&](const Node& run) { report.runs.push_back(ReadRun(run)); });
    return report;
}

/// The library's own text without its internal number.
std::string Explain(const Json::parse_error& error) {
    const std::string text = error.what();
    const std::size_t end = text.find("] ");
    return end == std::string::npos ? text : text.substr(end + 2);
}

std::string ReadText(const std::filesystem::path& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file || file.bad() || std::filesystem::is_directory(path)) {
        throw Exception(std::strerror(errno == 0 ? EISDIR : errno));
    }
    return text;
}

}  // namespace

Report ParseReport(const std::string& text) {
    try {
        const Json json = Json::parse(text);
        return ReadWhole(Node(json, ""));
    } catch (const Json::parse_error& error) {
        throw Exception("not a whole JSON text: " + Explain(error));
    }
}

Report ReadReport(const std::filesystem::path& path) {
    try {
        return ParseReport(ReadText(path));
    } catch (const Exception& error) {
        throw Exception(path.string() + ": " + error.what());
    }
}

}  // namespace Tarnex::Assay
