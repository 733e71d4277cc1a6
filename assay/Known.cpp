#include "assay/Known.h"

#include <boost/filesystem.hpp>

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;

bool IsUnchanged(const Json& before, Json now, Parent::ItemKind kind) {
    if (kind == Parent::ItemKind::Plugin) {
        now["codec_files"] = before.value("codec_files", Json());
    }
    return before == now;
}

/// The folder of the earlier report may be the one that this check replaces, and its names may be
/// given again.
void KeepLists(Item& item, const fs::path& lists) {
    for (std::string& argument : item.repro) {
        const fs::path path = argument;
        if (path.parent_path().extension() == ".lists" && fs::is_regular_file(path)) {
            fs::create_directories(lists);
            argument = (lists / ("known-" + item.name + ".list")).string();
            fs::copy_file(path, argument, fs::copy_options::overwrite_existing);
        }
    }
}

void CarryOver(const Item& known, const fs::path& lists, Item& item) {
    if (known.file == item.file && EndsRuns(known.verdict) &&
        item.verdict == Parent::Verdict::NotReached) {
        item = known;
        item.carried = true;
        KeepLists(item, lists);
    }
}

}  // namespace

void CarryOver(const Report& known, const Json& environment, const fs::path& lists,
               std::vector<Item>& items) {
    for (Item& item : items) {
        const Item* before = FindItem(known, item);
        if (before != nullptr && IsUnchanged(known.environment, environment, item.kind)) {
            CarryOver(*before, lists, item);
        }
    }
}

}  // namespace Tarnex::Assay
