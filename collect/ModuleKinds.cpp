#include "collect/ModuleKinds.h"

#include <boost/filesystem/operations.hpp>
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

std::vector<fs::path> SplitAtColons(const std::string& text) {
    std::vector<fs::path> paths;
    std::istringstream stream(text);
    for (std::string path; std::getline(stream, path, ':');) {
        if (!path.empty()) {
            paths.emplace_back(path);
        }
    }
    return paths;
}

}  // namespace

std::vector<SearchFolder> GetUsualFolders() {
    std::vector<SearchFolder> folders;
    for (const ModuleKind& kind : MODULE_KINDS) {
        const auto value = Platform::GetEnvironment(std::string(kind.variable));
        for (const fs::path& path : value ? SplitAtColons(*value) : GetUsualPaths(kind)) {
            folders.push_back({path, &kind});
        }
    }
    return folders;
}

}  // namespace Tarnex::Collect
