#include "report/Saving.h"

#include <fmt/chrono.h>
#include <unistd.h>

#include <boost/filesystem.hpp>
#include <cerrno>
#include <system_error>

#include "platform/AtomicFile.h"

namespace Tarnex::Reports {
namespace {

namespace fs = boost::filesystem;

constexpr std::chrono::seconds LOCK_TIME{5};
constexpr const char* LISTS = ".lists";
const std::string NOT_KEPT = "this check's report can't be kept: ";

std::string GetFileTime(const timespec& time) {
    return fmt::format("{:%Y%m%dT%H%M%S}.{:03}Z", fmt::gmtime(time.tv_sec),
                       time.tv_nsec / 1'000'000);
}

[[noreturn]] void Fail(const fs::path& path, int error) {
    throw std::system_error(error, std::generic_category(), "can't write " + path.string());
}

}  // namespace

Saving::Saving(const State& state, const timespec& started)
    : state(std::make_unique<State>(state)), time(GetFileTime(started)) {}

Saving::Saving(const fs::path& file) : report(fs::absolute(file).lexically_normal()) {
    boost::system::error_code error;
    fs::create_directories(report.parent_path(), error);
    if (error || access(report.parent_path().c_str(), W_OK) != 0) {
        Fail(report, error ? error.value() : errno);
    }
    if (!Platform::IsReplaceable(report.native())) {
        Fail(report, EINVAL);
    }
}

const fs::path& Saving::Open(std::vector<std::string>& notes) {
    if (folder) {
        return folder->GetPath();
    }
    try {
        if (state) {
            fs::create_directories(state->reports);
            state->Prune();
            folder = std::make_unique<CheckFolder>(state->reports / ("." + time + "-"));
            report = state->reports / (folder->GetPath().filename().string().substr(1) + ".json");
        } else {
            folder = std::make_unique<CheckFolder>(GetLists().string() + ".");
        }
    } catch (const std::exception& error) {
        notes.push_back(NOT_KEPT + error.what());
    }
    if (!folder) {
        folder = std::make_unique<CheckFolder>(fs::absolute(fs::temp_directory_path()) / "assay-");
    }
    return folder->GetPath();
}

void Saving::Finish(std::vector<std::string>& arguments) {
    if (!folder || report.empty()) {
        return;
    }
    const std::string fresh = folder->GetPath().string() + "/";
    for (std::string& argument : arguments) {
        const fs::path path = argument;
        boost::system::error_code ignored;
        if (argument.starts_with(fresh)) {
            argument.replace(0, fresh.size(), GetLists().string() + "/");
        } else if (path.parent_path().extension() == LISTS && fs::is_regular_file(path, ignored)) {
            const auto number = copies.size() + 1;
            const auto copy =
                copies.try_emplace(argument, fmt::format("known-{}.list", number)).first;
            argument = (GetLists() / copy->second).string();
        }
    }
}

void Saving::Save(Report& saved, const Scope& scope) {
    Open(saved.notes);
    if (report.empty()) {
        return;  // A note says so.
    }
    for (Parent::RunFacts& run : saved.runs) {
        Finish(run.arguments);
    }
    for (Parent::Item& item : saved.items) {
        Finish(item.repro);
    }
    if (!state) {
        CopyLists();
        SaveIntoFile(Render(ToSavedJson(saved), 1) + "\n");
        return;
    }
    try {
        CopyLists();
        SaveIntoState(Render(ToSavedJson(saved), 1) + "\n", saved, scope);
    } catch (const std::exception& error) {
        saved.notes.push_back(NOT_KEPT + error.what());
    }
}

void Saving::CopyLists() const {
    for (const auto& [from, name] : copies) {
        fs::copy_file(from, folder->GetPath() / name, fs::copy_options::overwrite_existing);
    }
}

/// The lists are in place before anything names them. A check that is killed meanwhile leaves a
/// folder that the next one removes.
void Saving::SaveIntoState(const std::string& text, Report& saved, const Scope& scope) {
    Platform::ReplaceFile((folder->GetPath() / "report.json").native(), text);
    folder->MoveTo(GetLists());
    fs::rename(folder->GetPath() / "report.json", report);
    state->Merge(saved, scope, folder->GetPath(), saved.notes);
    state->SetNewest(report, folder->GetPath());
    if (!fs::is_empty(folder->GetPath())) {
        folder->Keep();
    }
    state->Prune();
}

/// Another check may write the same file: lists and report change together.
void Saving::SaveIntoFile(const std::string& text) {
    const Lock lock(report.parent_path(), LOCK_TIME);
    Platform::ReplaceFile(report.native(), text);
    const bool hasLists = !fs::is_empty(folder->GetPath());
    fs::remove_all(GetLists());
    if (hasLists) {
        folder->MoveTo(GetLists());
        folder->Keep();
    }
}

}  // namespace Tarnex::Reports
