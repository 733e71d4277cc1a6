#include "assay/Known.h"

#include <algorithm>

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;
using Parent::Item;

constexpr const char* CODEC_FILES = "codec_files";

bool IsSameEnvironment(Json one, Json other) {
    one.erase(CODEC_FILES);
    other.erase(CODEC_FILES);
    // Not by the order of the keys.
    return nlohmann::json(one) == nlohmann::json(other);
}

bool IsOf(const Item& known, const Item& item) {
    return known.kind == item.kind && known.name == item.name && known.file == item.file &&
           Parent::EndsRuns(known.verdict);
}

bool IsKeptList(const fs::path& path) {
    std::error_code ignored;
    return path.parent_path().extension() == ".lists" && fs::is_regular_file(path, ignored);
}

}  // namespace

Known::Known(Report report, const Json& environment, fs::path lists)
    : report(std::move(report)),
      sameEnvironment(IsSameEnvironment(this->report.environment, environment)),
      lists(std::move(lists)) {}

void Known::CarryPlugins(std::vector<Item>& plugins) const {
    if (sameEnvironment) {
        Carry(plugins);
    }
}

void Known::CarryCodecs(const Json& codecFiles, std::vector<Item>& codecs) const {
    const auto known = report.environment.find(CODEC_FILES);
    if (sameEnvironment && known != report.environment.end() && *known == codecFiles) {
        Carry(codecs);
    }
}

void Known::Carry(std::vector<Item>& items) const {
    for (Item& item : items) {
        const auto known = std::ranges::find_if(
            report.items, [&](const Item& candidate) { return IsOf(candidate, item); });
        if (known != report.items.end() && item.verdict == Parent::Verdict::NotReached) {
            item = *known;
            item.carried = true;
            KeepLists(item);
        }
    }
}

/// The folder of the earlier report may be the one that this check replaces.
void Known::KeepLists(Item& item) const {
    for (std::string& argument : item.repro) {
        if (IsKeptList(argument)) {
            fs::create_directories(lists);
            const fs::path kept = lists / fs::path(argument).filename();
            fs::copy_file(argument, kept, fs::copy_options::overwrite_existing);
            argument = kept;
        }
    }
}

}  // namespace Tarnex::Assay
