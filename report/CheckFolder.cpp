#include "report/CheckFolder.h"

#include <cstdlib>

#include <boost/filesystem.hpp>
#include <cerrno>
#include <system_error>

namespace Tarnex::Reports {
namespace {

namespace fs = boost::filesystem;

fs::path MakeFolder(const fs::path& beginning) {
    std::string name = beginning.native() + "XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(),
                                "can't make a folder in " + beginning.parent_path().string());
    }
    return name;
}

}  // namespace

/// Another check may take the folder for abandoned before it is locked.
CheckFolder::CheckFolder(const fs::path& beginning) {
    constexpr int attempts = 10;
    for (int i = 0; i < attempts && (!lock || !lock->IsHeld()); ++i) {
        path = MakeFolder(beginning);
        lock.emplace(path, std::chrono::milliseconds(0));
    }
}

CheckFolder::~CheckFolder() {
    if (!kept) {
        boost::system::error_code ignored;
        fs::remove_all(path, ignored);
    }
}

void CheckFolder::MoveTo(const fs::path& target) {
    fs::remove_all(target);
    fs::rename(path, target);
    path = target;
}

void RemoveAbandoned(const fs::path& folder) {
    const Lock lock(folder, std::chrono::milliseconds(0));
    if (lock.IsHeld()) {
        boost::system::error_code ignored;
        fs::remove_all(folder, ignored);
    }
}

}  // namespace Tarnex::Reports
