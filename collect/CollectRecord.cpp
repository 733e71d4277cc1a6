#include "collect/CollectRecord.h"

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/string_file.hpp>
#include <string_view>

#include "collect/Fields.h"
#include "platform/AtomicFile.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;
using Installations::Installation;

constexpr std::string_view VERSION = "assayer collected 1";
constexpr std::string_view FOLDER = "folder";
constexpr std::string_view LINK = "link";

fs::path GetFile(const Installation& installation) {
    return installation.GetDirectory() / ".collected";
}

}  // namespace

std::optional<CollectRecord> ReadCollectRecord(const Installation& installation) {
    const fs::path file = GetFile(installation);
    std::string bytes;
    if (fs::exists(file)) {
        fs::load_string_file(file, bytes);
    }
    FieldReader fields(bytes);
    if (fields.Next() != VERSION) {
        return std::nullopt;
    }
    CollectRecord record;
    while (const auto what = fields.Next()) {
        const std::string text(fields.Next().value_or(""));
        if (what == FOLDER) {
            record.folders.insert(text);
        } else if (what == LINK) {
            record.links.emplace(text, std::string(fields.Next().value_or("")));
        }
    }
    return record;
}

void WriteCollectRecord(const Installation& installation, const CollectRecord& record) {
    FieldWriter fields;
    fields.Add(VERSION);
    for (const fs::path& folder : record.folders) {
        fields.Add(FOLDER);
        fields.Add(folder.native());
    }
    for (const auto& [plugin, target] : record.links) {
        fields.Add(LINK);
        fields.Add(plugin);
        fields.Add(target.native());
    }
    Platform::ReplaceFile(GetFile(installation).string(), fields.GetText());
}

}  // namespace Tarnex::Collect
