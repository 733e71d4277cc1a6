#include "report/OpenItems.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem.hpp>

#include "core/support/Exception.h"
#include "report/Reading.h"

namespace Tarnex::Reports {
namespace {

namespace fs = boost::filesystem;

constexpr int MAX_FILES = 100;  // checks side by side

fs::path GetFile(const fs::path& folder, int number) {
    return folder / (number == 0 ? "open.json" : fmt::format("open-{}.json", number));
}

/// No plugin and no codec test has such a name.
bool IsExercise(const std::string& name) {
    return name.find('/') != std::string::npos;
}

bool WriteAll(int file, const std::string& text) {
    return pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()) &&
           ftruncate(file, static_cast<off_t>(text.size())) == 0 && fdatasync(file) == 0;
}

}  // namespace

OpenItems::OpenItems(const fs::path& folder, const std::string& depth, const std::string& boot)
    : folder(folder), depth(depth), boot(boot) {
    boost::system::error_code ignored;
    for (int i = 0; i < MAX_FILES; ++i) {
        try {
            if (fs::exists(GetFile(folder, i), ignored)) {
                Read(GetFile(folder, i));
            }
        } catch (const std::exception&) {
            // It was being written when the machine stopped: nobody knows of what it told.
        }
    }
    std::ranges::sort(suspects);
}

OpenItems::~OpenItems() {
    if (own) {
        unlink(path.c_str());
    }
}

void OpenItems::Read(const fs::path& file) {
    const Json json = ParseJson(ReadText(file));
    auto names = json.at("names").get<std::vector<std::string>>();
    if (json.at("boot") == boot) {
        return;
    }
    if (json.at("depth") == depth || !std::ranges::any_of(names, IsExercise)) {
        suspects.insert(suspects.end(), names.begin(), names.end());
        if (names.size() == 1) {
            culprits.push_back(names.front());
        }
        earlier[file] = std::move(names);
    } else {
        others.insert(file);
    }
}

void OpenItems::Forget(const std::function<bool(const std::string&)>& isDone) {
    std::erase_if(earlier, [&](const auto& entry) {
        return std::ranges::all_of(entry.second, isDone) && unlink(entry.first.c_str()) == 0;
    });
}

void OpenItems::Write(const std::vector<std::string>& names) {
    if (!own) {
        Take();
    }
    if (own) {
        const Json json{{"boot", boot}, {"depth", depth}, {"names", names}};
        static_cast<void>(
            WriteAll(own->GetFile(), json.dump(-1, ' ', false, Json::error_handler_t::replace)));
    }
}

/// The first file that no other check has and that tells of nothing. Others like it are those of
/// checks that were killed.
void OpenItems::Take() {
    boost::system::error_code ignored;
    for (int i = 0; i < MAX_FILES; ++i) {
        const fs::path file = GetFile(folder, i);
        const bool isThere = fs::exists(file, ignored);
        const bool isNeeded = earlier.contains(file) || others.contains(file);
        if (isNeeded || (own && !isThere)) {
            continue;
        }
        auto lock = std::make_unique<Lock>(file, std::chrono::milliseconds(0));
        if (lock->IsHeld() && own) {
            unlink(file.c_str());
        } else if (lock->IsHeld()) {
            own = std::move(lock);
            path = file;
        }
    }
}

std::string OpenItems::GetBoot() {
    try {
        return ReadText("/proc/sys/kernel/random/boot_id");
    } catch (const Exception&) {
        return "";
    }
}

}  // namespace Tarnex::Reports
