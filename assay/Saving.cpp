#include "assay/Saving.h"

#include <unistd.h>
#include <boost/filesystem.hpp>

#include <cerrno>
#include <system_error>

#include "platform/Files.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;

[[noreturn]] void Fail(const fs::path& path, int error) {
    throw std::system_error(error, std::generic_category(), "can't write " + path.string());
}

}  // namespace

SavedReport::SavedReport(const fs::path& file)
    : path(fs::absolute(file).lexically_normal()),
      freshLists(path.string() + ".new.lists"),
      lists(path.string() + ".lists") {
    boost::system::error_code error;
    fs::create_directories(path.parent_path(), error);
    if (error || access(path.parent_path().c_str(), W_OK) != 0) {
        Fail(path, error ? error.value() : errno);
    }
    if (!Platform::IsReplaceable(path.native())) {
        Fail(path, EINVAL);
    }
    fs::remove_all(freshLists);
}

SavedReport::~SavedReport() {
    boost::system::error_code ignored;
    fs::remove_all(freshLists, ignored);
}

void SavedReport::Finish(std::vector<std::string>& arguments) const {
    for (std::string& argument : arguments) {
        if (argument.starts_with(freshLists.string() + "/")) {
            argument.replace(0, freshLists.string().size(), lists.string());
        }
    }
}

void SavedReport::Save(Report& report) const {
    for (Parent::RunFacts& run : report.runs) {
        Finish(run.arguments);
    }
    for (Parent::Item& item : report.items) {
        Finish(item.repro);
    }
    Platform::ReplaceFile(path.native(), Render(ToJson(report), 1) + "\n");
    fs::remove_all(lists);
    if (fs::exists(freshLists)) {
        fs::rename(freshLists, lists);
    }
}

}  // namespace Tarnex::Assay
