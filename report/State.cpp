#include "report/State.h"

#include <fmt/format.h>
#include <sha256.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstring>

#include "core/support/Exception.h"
#include "platform/AtomicFile.h"
#include "report/CheckFolder.h"
#include "report/Environment.h"

namespace Tarnex::Reports {
namespace {

namespace fs = boost::filesystem;

constexpr std::size_t MAX_REPORTS = 50;
constexpr std::size_t KEY_DIGITS = 16;
constexpr std::chrono::seconds LOCK_TIME{5};
constexpr const char* LISTS = ".lists";

std::vector<fs::path> ListFolder(const fs::path& folder) {
    boost::system::error_code error;
    std::vector<fs::path> paths;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        paths.push_back(entry->path());
    }
    std::ranges::sort(paths);
    return paths;
}

/// Two damaged states in the same second would be one too many to keep.
std::string SetAside(const fs::path& path) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const fs::path aside = path.string() + ".unreadable-" + ToIsoTime(now, false);
    boost::system::error_code error;
    fs::rename(path, aside, error);
    return error ? "it stays, because it can't be renamed: " + error.message()
                 : "it is " + aside.string() + " now";
}

}  // namespace

State::State(const fs::path& root, const std::string& key)
    : root(root), folder(root / key), reports(folder / "reports"), known(folder / "known.json") {}

std::string State::GetKey(const fs::path& installation, bool isOwn) {
    const std::string& path = installation.native();
    char digits[SHA256_DIGEST_STRING_LENGTH];
    SHA256Data(reinterpret_cast<const std::uint8_t*>(path.data()), path.size(), digits);
    return isOwn ? "own" : std::string(digits, KEY_DIGITS);
}

Known State::Read(std::vector<std::string>& notes) const {
    boost::system::error_code ignored;
    if (!fs::exists(fs::symlink_status(known, ignored))) {
        return {};
    }
    try {
        return ParseKnown(ReadText(known));
    } catch (const Exception& error) {
        notes.push_back(fmt::format("what was known can't be read: {}: {}; {}", known.string(),
                                    error.what(), SetAside(known)));
        return {};
    }
}

void State::Merge(const Report& report, const Scope& scope, const fs::path& work,
                  std::vector<std::string>& notes) const {
    const fs::path lockFile = folder / "lock";
    const Lock lock(lockFile, LOCK_TIME);
    if (!lock.IsHeld()) {
        notes.push_back(fmt::format("what is known stays as it was: {}: {}", lockFile.string(),
                                    lock.GetError() == EWOULDBLOCK
                                        ? "another check holds the lock"
                                        : std::strerror(lock.GetError())));
        return;
    }
    const std::string text = RenderKnown(Reports::Merge(Read(notes), report, scope));
    Platform::ReplaceFile((work / "known.json").native(), text);
    fs::rename(work / "known.json", known);
}

std::vector<fs::path> State::ListReports() const {
    std::vector<fs::path> paths = ListFolder(reports);
    std::erase_if(paths, [](const fs::path& path) {
        return path.extension() != ".json" || path.filename().native().starts_with('.');
    });
    return paths;
}

void State::Prune() const {
    boost::system::error_code ignored;
    std::vector<fs::path> all = ListReports();
    const std::size_t old = all.size() - std::min(all.size(), MAX_REPORTS);
    for (std::size_t i = 0; i < old; ++i) {
        fs::remove(all[i], ignored);
    }
    std::string text;
    try {
        text = ReadText(known);
    } catch (const Exception&) {
        // Nothing is known.
    }
    for (const fs::path& path : ListFolder(reports)) {
        const std::string name = path.filename().string();
        const bool isLists = path.extension() == LISTS;
        const bool isNeeded = isLists && (fs::exists(path.parent_path() / path.stem(), ignored) ||
                                          text.find(name) != std::string::npos);
        if (!isNeeded && (isLists || name.starts_with('.'))) {
            RemoveAbandoned(path);
        }
    }
}

void State::SetNewest(const fs::path& report, const fs::path& work) const {
    fs::create_symlink(report.lexically_relative(root), work / "newest");
    fs::rename(work / "newest", root / "report.json");
}

}  // namespace Tarnex::Reports
