#include "assay/Saving.h"

#include <fmt/format.h>
#include <unistd.h>
#include <boost/filesystem.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;

[[noreturn]] void Fail(const fs::path& path, int error) {
    throw Exception(fmt::format("can't write {}: {}", path.string(), std::strerror(error)));
}

bool IsRegular(const fs::path& path) {
    boost::system::error_code ignored;
    return !fs::exists(path, ignored) || fs::is_regular_file(path, ignored);
}

bool WriteInto(const fs::path& file, std::string_view text) {
    errno = 0;
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    return !stream.fail();
}

}  // namespace

void WriteFile(const fs::path& path, std::string_view text) {
    boost::system::error_code ignored;
    const fs::path known = fs::canonical(path, ignored);
    const fs::path& target = known.empty() ? path : known;  // what a link leads to
    const fs::path fresh =
        IsRegular(target) ? fs::path(fmt::format("{}.{}", target.string(), getpid())) : target;
    if (!WriteInto(fresh, text) || rename(fresh.c_str(), target.c_str()) != 0) {
        const int error = errno;
        if (fresh != target) {
            fs::remove(fresh, ignored);
        }
        Fail(path, error);
    }
}

SavedReport::SavedReport(const fs::path& file)
    : path(fs::absolute(file).lexically_normal()),
      freshLists(path.string() + ".new.lists"),
      lists(path.string() + ".lists") {
    boost::system::error_code error;
    fs::create_directories(path.parent_path(), error);
    if (error || access(path.parent_path().c_str(), W_OK) != 0) {
        Fail(path, error ? error.value() : errno);
    }
    if (!IsRegular(path)) {
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
    WriteFile(path, Render(ToJson(report), 1) + "\n");
    fs::remove_all(lists);
    if (fs::exists(freshLists)) {
        fs::rename(freshLists, lists);
    }
}

}  // namespace Tarnex::Assay
