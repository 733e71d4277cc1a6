#include "collect/FolderListing.h"

#include <algorithm>
#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/operations.hpp>

#include "collect/ModuleKinds.h"
#include "core/support/Exception.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

// What a cache keeps of an entry: what it is, and its name.
constexpr char FOLDER = 'd';
constexpr char LINK = 'l';
constexpr char OTHER = 'f';

bool HasModuleName(const fs::path& path) {
    return std::ranges::any_of(MODULE_KINDS, [&](const ModuleKind& kind) {
        return path.native().ends_with(kind.extension) && &kind != &LV2;
    });
}

Texts ReadFolder(const fs::path& folder) {
    Texts texts;
    try {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            const fs::file_type type = entry.symlink_status().type();
            const char what = type == fs::directory_file ? FOLDER
                              : type == fs::symlink_file ? LINK
                                                         : OTHER;
            if (what != OTHER || HasModuleName(entry.path())) {
                texts.push_back(what + entry.path().filename().native());
            }
        }
    } catch (const fs::filesystem_error& error) {
        throw Exception(error.code().message());
    }
    std::ranges::sort(texts, {}, [](const std::string& text) { return text.substr(1); });
    return texts;
}

}  // namespace

std::vector<FolderEntry> ListFolder(const fs::path& folder, ReadingCache& cache) {
    const Reading& reading = cache.Get('l', folder, [&] { return ReadFolder(folder); });
    if (!reading.problem.empty()) {
        throw Exception(reading.problem);
    }
    std::vector<FolderEntry> entries;
    entries.reserve(reading.texts.size());
    for (const std::string& text : reading.texts) {
        fs::path path = folder / text.substr(1);
        boost::system::error_code ignored;
        const bool isLink = text.front() == LINK;
        const bool isFolder = isLink ? fs::is_directory(path, ignored) : text.front() == FOLDER;
        if (isFolder || !isLink || HasModuleName(path)) {
            entries.push_back({std::move(path), isFolder, isLink});
        }
    }
    return entries;
}

}  // namespace Tarnex::Collect
