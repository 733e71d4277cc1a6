#include "collect/ModuleFinder.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <map>
#include <set>

#include "collect/Bundle.h"
#include "collect/FolderListing.h"
#include "core/support/Exception.h"
#include "installation/Installation.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

using Installations::FileId;
using Installations::Interface;
using Installations::TraitsOf;

constexpr const char* UI_MARK = "user interface";

bool IsFolder(const fs::path& path) {
    boost::system::error_code ignored;
    return fs::is_directory(path, ignored);
}

bool IsNamedAs(const fs::path& path, const ModuleKind& kind) {
    return path.native().ends_with(kind.extension);
}

// Uses the bundle's name, because most binaries have names that say little, such as "plugin.so".
std::string NameInBundle(const fs::path& bundle, const fs::path& binary, bool isOnlyOne) {
    const fs::path name = bundle.extension() == ".lv2" ? bundle.stem() : bundle.filename();
    return name.string() + (isOnlyOne ? "" : "." + binary.stem().string());
}

/// The one binary that hosts open in a VST3 bundle on this machine, relative to it.
fs::path GetVst3Binary(const fs::path& bundle) {
    return fs::path("Contents") / VST3_ARCHITECTURE / (bundle.stem().string() + ".so");
}

/// What a module's file says of itself: the names of its interfaces, and whether it is a user
/// interface of an LV2 plugin.
Texts ReadModule(const fs::path& path) {
    const Installations::ModuleFile file = Installations::ReadModuleFile(path);
    Texts texts;
    for (const Interface interface : file.interfaces) {
        texts.emplace_back(TraitsOf(interface).name);
    }
    if (file.isUserInterface) {
        texts.emplace_back(UI_MARK);
    }
    return texts;
}

bool Speaks(const Reading& module, const ModuleKind& kind) {
    return std::ranges::count(module.texts, TraitsOf(kind.interface).name) > 0;
}

class Finder {
public:
    explicit Finder(ReadingCache& cache) : cache(cache) {}

    void Search(const SearchFolder& searched, const fs::path& installation) {
        boost::system::error_code error;
        root = fs::canonical(searched.path, error);
        if (error) {
            findings.leftOut.push_back({searched.path, error.message()});
            return;
        }
        skipped = installation;
        kind = searched.kind;
        seenFolders = {root};
        if (kind == nullptr && IsAnyBundle(root)) {
            LookIntoAnyBundle(root);
        } else {
            Walk(root);
        }
    }

    /// A file is known by the bundle around it, then by its name, then by what it exports.
    void Examine(const fs::path& path) {
        root = path.parent_path();
        if (IsFolder(path)) {
            if (IsAnyBundle(path)) {
                LookIntoAnyBundle(path);
            } else {
                LeaveOut(path, "a folder, but neither an LV2 nor a VST3 bundle");
            }
            return;
        }
        const Interface place = Installations::FindInterface(path, "");
        const ModuleKind* known = place == Interface::Clap   ? &CLAP
                                  : place == Interface::Vst3 ? &VST3
                                                             : nullptr;
        Look(path, IsBundle(path.parent_path()) ? &LV2 : known, path.stem().string());
    }

    Findings findings;

private:
    bool Takes(const ModuleKind& other) const { return kind == nullptr || kind == &other; }

    static bool IsAnyBundle(const fs::path& folder) {
        return IsNamedAs(folder, VST3) || IsBundle(folder);
    }

    void LookIntoAnyBundle(const fs::path& folder) {
        if (IsNamedAs(folder, VST3)) {
            LookIntoVst3(folder);
        } else {
            LookIntoLv2(folder);
        }
    }

    void Walk(const fs::path& folder) {
        if (folder == skipped) {
            return;
        }
        try {
            for (const FolderEntry& entry : ListFolder(folder, cache)) {
                if (entry.isFolder) {
                    WalkInto(entry);
                } else {
                    LookByName(entry.path);
                }
            }
        } catch (const Exception& error) {
            LeaveOut(folder, error.what());
        }
    }

    void WalkInto(const FolderEntry& entry) {
        if (Takes(VST3) && IsNamedAs(entry.path, VST3)) {
            LookIntoVst3(entry.path);
        } else if (Takes(LV2) && IsBundle(entry.path)) {
            LookIntoLv2(entry.path);
        } else if (kind != nullptr && kind->depth == Depth::Files) {
            LeaveOutBelow(entry);
        } else if (!entry.isLink || FollowsLinks()) {
            if (IsNew(entry)) {
                Walk(entry.path);
            }
        }
    }

    /// Links may lead in circles.
    bool FollowsLinks() const { return kind == &CLAP || kind == &VST3; }

    bool IsNew(const FolderEntry& entry) {
        boost::system::error_code ignored;
        return !FollowsLinks() || seenFolders.insert(fs::canonical(entry.path, ignored)).second;
    }

    /// What lies deeper than hosts look.
    void LeaveOutBelow(const FolderEntry& folder) {
        if (folder.isLink) {
            return;
        }
        try {
            for (const FolderEntry& entry : ListFolder(folder.path, cache)) {
                if (entry.isFolder) {
                    LeaveOutBelow(entry);
                } else {
                    LeaveOut(entry.path, "deeper than hosts of " + GetName(*kind) + " look");
                }
            }
        } catch (const Exception& error) {
            LeaveOut(folder.path, error.what());
        }
    }

    static std::string GetName(const ModuleKind& kind) {
        return std::string(TraitsOf(kind.interface).name);
    }

    void LookByName(const fs::path& path) {
        const std::string name = path.stem().string();
        const auto isPlace = [&](const ModuleKind& place) {
            return Takes(place) && IsNamedAs(path, place);
        };
        if (isPlace(CLAP)) {
            Look(path, &CLAP, name);
        } else if (isPlace(VST3)) {
            Look(path, &VST3, name);
        } else if (kind == nullptr ? path.native().ends_with(".so") : isPlace(*kind)) {
            Look(path, kind, name);
        } else {
            LeaveOut(path, "not named as hosts of " + (kind == nullptr ? "any" : GetName(*kind)) +
                               " want it");
        }
    }

    void LookIntoVst3(const fs::path& bundle) {
        const fs::path binary = GetVst3Binary(bundle);
        boost::system::error_code ignored;
        if (fs::exists(bundle / binary, ignored)) {
            Look(bundle / binary, &VST3, bundle.stem().string());
        } else {
            LeaveOut(bundle, "has no binary for this machine, " + binary.string());
        }
    }

    void LookIntoLv2(const fs::path& folder) {
        try {
            const Bundle bundle = ReadBundle(folder, cache);
            for (const std::string& problem : bundle.problems) {
                LeaveOut(folder, problem);
            }
            for (const fs::path& binary : bundle.binaries) {
                if (binary.is_absolute()) {
                    Look(binary, &LV2, NameInBundle(folder, binary, bundle.binaries.size() == 1));
                } else {
                    LeaveOut(folder, "names as a binary what isn't a file: " + binary.string());
                }
            }
            LeaveOutOthers(folder, bundle);
        } catch (const Exception& error) {
            LeaveOut(folder, error.what());
        }
    }

    /// Most are user interfaces.
    void LeaveOutOthers(const fs::path& folder, const Bundle& bundle) {
        for (const FolderEntry& entry : ListFolder(folder, cache)) {
            if (!entry.isFolder && !bundle.binaries.contains(entry.path)) {
                LeaveOut(entry.path, IsUserInterface(entry.path)
                                         ? "a user interface of an LV2 bundle"
                                         : "no binary of a plugin of its LV2 bundle");
            }
        }
    }

    bool IsUserInterface(const fs::path& path) {
        try {
            return std::ranges::count(Read(path).texts, UI_MARK) > 0;
        } catch (const Exception&) {
            return false;
        }
    }

    const Reading& Read(const fs::path& path) {
        const Reading& reading = cache.Get('e', path, [&] { return ReadModule(path); });
        if (!reading.problem.empty()) {
            throw Exception(reading.problem);
        }
        return reading;
    }

    /// `place`: the kind that hosts take it for; null if that depends on the file.
    void Look(const fs::path& path, const ModuleKind* place, const std::string& name) {
        try {
            const Reading& module = Read(path);
            const FileId id(module.stamp[0], module.stamp[1]);
            const auto [known, isNew] = pathOfFile.emplace(id, path);
            if (isNew) {
                Add({path, ChooseKind(module, place), name, id});
            } else if (known->second != path) {
                LeaveOut(path, "the same file as " + known->second.string());
            }
        } catch (const Exception& error) {
            LeaveOut(path, error.what());
        }
    }

    static const ModuleKind* ChooseKind(const Reading& module, const ModuleKind* place) {
        if (place == &LV2 || place == &CLAP || place == &VST3 ||
            (place != nullptr && Speaks(module, *place))) {
            return place;
        }
        const auto kind = std::ranges::find_if(MODULE_KINDS, [&](const ModuleKind& kind) {
            return kind.suffix.empty() && Speaks(module, kind);
        });
        return kind == MODULE_KINDS.end() ? place : &*kind;
    }

    void Add(const FoundModule& module) {
        if (module.kind == nullptr) {
            LeaveOut(module.path, "exports none of the known entry points");
        } else {
            findings.modules.push_back(module);
        }
    }

    void LeaveOut(const fs::path& path, const std::string& reason) {
        findings.leftOut.push_back({path, reason, root});
    }

    ReadingCache& cache;
    fs::path root;
    fs::path skipped;
    const ModuleKind* kind = nullptr;
    std::set<fs::path> seenFolders;
    std::map<FileId, fs::path> pathOfFile;
};

/// The deepest folder that holds all of them.
fs::path FindCommonFolder(const std::vector<fs::path>& paths) {
    fs::path common = paths.front().parent_path();
    for (const fs::path& path : paths) {
        while (!common.empty() && !path.native().starts_with(common.native() + "/")) {
            common = common.parent_path();
        }
    }
    return common;
}

}  // namespace

Findings FindModules(const std::vector<SearchFolder>& folders, const fs::path& installation,
                     ReadingCache& cache) {
    Finder finder(cache);
    const fs::path skipped = fs::canonical(installation);
    for (const SearchFolder& folder : folders) {
        finder.Search(folder, skipped);
    }
    return std::move(finder.findings);
}

Findings ExamineModule(const fs::path& path, ReadingCache& cache) {
    Finder finder(cache);
    finder.Examine(path);
    return std::move(finder.findings);
}

std::vector<std::string> Describe(const std::vector<LeftOut>& leftOut) {
    std::map<std::pair<std::string, fs::path>, std::vector<fs::path>> groups;
    for (const LeftOut& file : leftOut) {
        groups[{file.reason, file.folder}].push_back(file.path);
    }
    std::vector<std::string> lines;
    lines.reserve(groups.size());
    for (const auto& [group, paths] : groups) {
        lines.push_back("left out " +
                        (paths.size() == 1 ? paths.front().string()
                                           : std::to_string(paths.size()) + " files in " +
                                                 FindCommonFolder(paths).string()) +
                        ": " + group.first);
    }
    return lines;
}

}  // namespace Tarnex::Collect
