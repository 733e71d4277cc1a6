#include "collect/ModuleFinder.h"

#include <algorithm>
#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/operations.hpp>
#include <map>

#include "collect/Bundle.h"
#include "collect/ModuleFile.h"
#include "core/support/Exception.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

const ModuleKind* ChooseKind(const ModuleFile& file, const ModuleKind* folderKind) {
    if (file.kinds.empty() || std::ranges::count(file.kinds, folderKind) > 0) {
        return folderKind;
    }
    return file.kinds.front();
}

bool IsBelow(const fs::path& path, const fs::path& folder) {
    const fs::path relative = path.lexically_relative(folder);
    return !relative.empty() && *relative.begin() != ".." && relative != ".";
}

// Uses the bundle's name, because most binaries have names that say little, such as "plugin.so".
std::string NameInBundle(const fs::path& bundle, const fs::path& binary, bool isOnlyOne) {
    const fs::path name = bundle.extension() == ".lv2" ? bundle.stem() : bundle.filename();
    return name.string() + (isOnlyOne ? "" : "." + binary.stem().string());
}

class Finder {
public:
    explicit Finder(const fs::path& installation) : installation(fs::canonical(installation)) {}

    void Search(const fs::path& folder, const ModuleKind* kind) {
        boost::system::error_code error;
        const fs::path real = fs::canonical(folder, error);
        if (error) {
            findings.leftOut.push_back({folder, error.message()});
        } else {
            Walk(real, kind);
        }
    }

    Findings findings;

private:
    void Walk(const fs::path& folder, const ModuleKind* kind) {
        if (folder == installation) {
            return;
        }
        if (IsBundle(folder)) {
            LookIntoBundle(folder);
            return;
        }
        std::vector<fs::directory_entry> entries;
        try {
            entries.assign(fs::directory_iterator(folder), fs::directory_iterator());
        } catch (const fs::filesystem_error& error) {
            findings.leftOut.push_back({folder, error.code().message()});
        }
        std::ranges::sort(entries, {}, &fs::directory_entry::path);
        for (const fs::directory_entry& entry : entries) {
            boost::system::error_code ignored;
            if (fs::is_directory(entry.symlink_status(ignored)) || IsBundle(entry.path())) {
                Walk(entry.path(), kind);
            } else if (entry.path().extension() == ".so") {
                Look(entry.path(), kind, entry.path().stem().string());
            }
        }
    }

    void LookIntoBundle(const fs::path& bundle) {
        try {
            const std::set<fs::path> binaries = ReadBundle(bundle);
            for (const fs::path& binary : binaries) {
                if (IsBelow(binary, bundle)) {
                    Look(binary, &BUNDLED, NameInBundle(bundle, binary, binaries.size() == 1));
                } else {
                    findings.leftOut.push_back(
                        {bundle,
                         "its manifest names a file outside the bundle: " + binary.string()});
                }
            }
        } catch (const Exception& error) {
            findings.leftOut.push_back({bundle, error.what()});
        }
    }

    void Look(const fs::path& path, const ModuleKind* folderKind, const std::string& name) {
        try {
            const ModuleFile file = ReadModuleFile(path);
            const auto [known, isNew] = pathOfFile.emplace(file.id, path);
            if (isNew) {
                Add(path, ChooseKind(file, folderKind), name);
            } else if (known->second != path) {
                findings.leftOut.push_back({path, "the same file as " + known->second.string()});
            }
        } catch (const Exception& error) {
            findings.leftOut.push_back({path, error.what()});
        }
    }

    void Add(const fs::path& path, const ModuleKind* kind, const std::string& name) {
        if (kind == nullptr) {
            findings.leftOut.push_back({path, "exports none of the known entry points"});
        } else {
            findings.modules.push_back({path, kind, name});
        }
    }

    fs::path installation;
    std::map<FileId, fs::path> pathOfFile;
};

}  // namespace

Findings FindModules(const std::vector<SearchFolder>& folders, const fs::path& installation) {
    Finder finder(installation);
    for (const SearchFolder& folder : folders) {
        finder.Search(folder.path, folder.kind);
    }
    return std::move(finder.findings);
}

}  // namespace Tarnex::Collect
