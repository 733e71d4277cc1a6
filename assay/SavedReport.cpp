#include "assay/SavedReport.h"

#include "assay/FileOutput.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;

}  // namespace

SavedReport::SavedReport(const fs::path& path) : path(fs::absolute(path).lexically_normal()) {
    RequireWritable(this->path);
    fs::remove_all(FreshLists());
}

SavedReport::~SavedReport() {
    std::error_code ignored;
    fs::remove_all(FreshLists(), ignored);
}

fs::path SavedReport::Lists() const {
    return path.string() + ".lists";
}

fs::path SavedReport::FreshLists() const {
    return path.string() + ".new.lists";
}

Parent::Item SavedReport::Finish(Parent::Item item) const {
    const std::string fresh = FreshLists().string() + "/";
    for (std::string& argument : item.repro) {
        if (argument.starts_with(fresh)) {
            argument = Lists() / argument.substr(fresh.size());
        }
    }
    return item;
}

void SavedReport::Save(const Report& report) const {
    WriteFile(path, Render(ToJson(report), 1) + "\n");
    fs::remove_all(Lists());
    if (fs::exists(FreshLists())) {
        fs::rename(FreshLists(), Lists());
    }
}

}  // namespace Tarnex::Assay
