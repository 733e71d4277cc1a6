#include "collect/ModuleKinds.h"

#include <boost/filesystem/operations.hpp>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>

#include "platform/Environment.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

std::vector<fs::path> GetLibraryFolders() {
    std::vector<fs::path> folders{"/usr/local/lib", "/usr/lib", "/usr/local/lib64", "/usr/lib64"};
    const std::string architecture = LIBRARY_ARCHITECTURE;
    if (!architecture.empty()) {
        folders.push_back("/usr/local/lib/" + architecture);
        folders.push_back("/usr/lib/" + architecture);
    }
    return folders;
}

std::vector<fs::path> GetUsualPaths(const ModuleKind& kind) {
    std::vector<fs::path> paths;
    const fs::path home = Platform::GetEnvironment("HOME").value_or("");
    for (const std::string_view folder : kind.homeFolders) {
        if (!home.empty() && !folder.empty()) {
            paths.push_back(home / std::string(folder));
        }
    }
    for (const fs::path& libraries : GetLibraryFolders()) {
        paths.push_back(libraries / std::string(kind.libFolder));
    }
    std::erase_if(paths, [](const fs::path& path) {
        boost::system::error_code ignored;
        return !fs::is_directory(path, ignored);
    });
    return paths;
}

/// As LV2's usual library expands it; hosts of the others get what a shell expanded.
fs::path ExpandHome(const std::string& path, const ModuleKind& kind) {
    const auto home = Platform::GetEnvironment("HOME");
    return kind.interface == Installations::Interface::Lv2 && home && path.starts_with("~/")
               ? fs::path(*home) / path.substr(2)
               : fs::path(path);
}

std::vector<fs::path> GetNamedPaths(const ModuleKind& kind) {
    std::vector<fs::path> paths;
    const auto value =
        kind.variable.empty() ? std::nullopt : Platform::GetEnvironment(std::string(kind.variable));
    std::istringstream stream(value.value_or(""));
    for (std::string path; std::getline(stream, path, ':');) {
        boost::system::error_code ignored;
        if (!path.empty() && !fs::exists(fs::path(path) / TRUSTED_MARK, ignored)) {
            paths.push_back(ExpandHome(path, kind));
        }
    }
    return paths;
}

}  // namespace

std::vector<SearchFolder> GetUsualFolders() {
    std::vector<SearchFolder> folders;
    for (const ModuleKind& kind : MODULE_KINDS) {
        std::vector<fs::path> paths = GetNamedPaths(kind);
        if (paths.empty() || kind.adds) {
            std::ranges::copy(GetUsualPaths(kind), std::back_inserter(paths));
        }
        for (const fs::path& path : paths) {
            folders.push_back({path, &kind});
        }
    }
    return folders;
}

}  // namespace Tarnex::Collect
