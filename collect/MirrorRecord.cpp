#include "collect/MirrorRecord.h"

#include <fstream>

#include "platform/AtomicFile.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

fs::path GetFile(const fs::path& directory) {
    return directory / ".copied-from";
}

}  // namespace

std::optional<MirrorRecord> ReadMirrorRecord(const fs::path& directory) {
    std::ifstream file(GetFile(directory).native(), std::ios::binary);
    std::string line;
    if (!std::getline(file, line)) {
        return std::nullopt;
    }
    MirrorRecord record{line, std::nullopt};
    while (std::getline(file, line)) {
        if (!record.names) {
            record.names.emplace();
        }
        record.names->insert(line);
    }
    return record;
}

bool WriteMirrorRecord(const fs::path& directory, const MirrorRecord& record) {
    const auto before = ReadMirrorRecord(directory);
    if (before && before->source == record.source && before->names == record.names) {
        return false;
    }
    std::string text = record.source.string() + "\n";
    for (const std::string& name : record.names.value_or(std::set<std::string>())) {
        text += name + "\n";
    }
    Platform::ReplaceFile(GetFile(directory).string(), text);
    return true;
}

}  // namespace Tarnex::Collect
