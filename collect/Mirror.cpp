#include "collect/Mirror.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "collect/MirrorRecord.h"
#include "core/support/Exception.h"
#include "platform/AtomicFile.h"
#include "support/PluginList.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;
using Core::Utils::PluginLists;
using Installations::Installation;

enum class Way { Copy, Link };

/// What the copy takes of its source, and how, by relative path.
std::map<std::string, Way> FindParts(const Installation& source) {
    std::map<std::string, Way> parts;
    for (const fs::directory_entry& entry : fs::directory_iterator(source.GetDirectory())) {
        const std::string name = entry.path().filename().string();
        if (!fs::is_regular_file(entry.path())) {
            continue;
        }
        if (Installations::IsProgramFile(name)) {
            parts.emplace(name, Way::Copy);
        } else if (!Installations::GetPlugin(name).empty()) {
            parts.emplace(name, Way::Link);
        }
    }
    boost::system::error_code none;
    for (const fs::directory_entry& entry :
         fs::recursive_directory_iterator(source.GetResources(), none)) {
        if (!fs::is_directory(entry.path())) {
            parts.emplace(entry.path().lexically_relative(source.GetDirectory()).string(),
                          Way::Link);
        }
    }
    return parts;
}

bool IsThere(const fs::path& path) {
    boost::system::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

bool IsLink(const fs::path& path) {
    boost::system::error_code ignored;
    return fs::is_symlink(fs::symlink_status(path, ignored));
}

/// The copy has the time of change of what it was made from, and so shows whether that changed.
bool Copy(const fs::path& from, const fs::path& to) {
    if (IsThere(to) && fs::file_size(from) == fs::file_size(to) &&
        fs::last_write_time(from) == fs::last_write_time(to)) {
        return false;
    }
    Platform::ReplaceByCopy(from.native(), to.native());
    return true;
}

bool Link(const fs::path& target, const fs::path& link) {
    if (IsLink(link) && fs::read_symlink(link) == target) {
        return false;
    }
    fs::create_directories(link.parent_path());
    Platform::ReplaceByLink(target.native(), link.native());
    return true;
}

class Mirroring {
public:
    Mirroring(const Installation& source, const Installation& copy)
        : source(source), copy(copy), parts(FindParts(source)) {}

    bool Run() {
        ReadBefore();
        ChooseParts();
        WriteFirst();
        for (const auto& [name, way] : parts) {
            const fs::path from = source.GetDirectory() / name;
            changed |= way == Way::Copy ? Copy(from, GetPath(name)) : Link(from, GetPath(name));
        }
        UpdateList();
        RemoveStale();
        changed |= WriteMirrorRecord(copy.GetDirectory(), {source.GetDirectory(), GetNames()});
        return changed;
    }

private:
    fs::path GetPath(const std::string& name) const { return copy.GetDirectory() / name; }

    std::set<std::string> GetNames() const {
        std::set<std::string> names;
        for (const auto& part : parts) {
            names.insert(part.first);
        }
        return names;
    }

    void ReadBefore() {
        fs::create_directories(copy.GetDirectory());
        auto record = ReadMirrorRecord(copy.GetDirectory());
        if (!record && !fs::is_empty(copy.GetDirectory())) {
            throw Exception(copy.GetDirectory().string() + ": neither empty nor an installation");
        }
        sourceBefore = record ? record->source : source.GetDirectory();
        before = record && record->names ? *record->names : FindUnrecorded();
    }

    /// What version 1.1 copied and linked, which it didn't write down. A library that the source no
    /// longer has can't be told from a file of the user's, and stays.
    std::set<std::string> FindUnrecorded() const {
        std::set<std::string> names;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(
                 copy.GetDirectory(), fs::directory_options::skip_permission_denied)) {
            const std::string name = entry.path().lexically_relative(copy.GetDirectory()).string();
            const auto part = parts.find(name);
            if (IsLinkToSource(name) || (part != parts.end() && part->second == Way::Copy)) {
                names.insert(name);
            }
        }
        return names;
    }

    /// To the source of today or to the one before.
    bool IsLinkToSource(const std::string& name) const {
        if (!IsLink(GetPath(name))) {
            return false;
        }
        const fs::path target = fs::read_symlink(GetPath(name));
        return target == source.GetDirectory() / name || target == sourceBefore / name;
    }

    bool IsOurs(const std::string& name) const {
        return IsLinkToSource(name) ||
               (before.contains(name) && !IsLink(GetPath(name)) &&
                fs::is_regular_file(GetPath(name)) && Installations::IsProgramFile(name));
    }

    /// Leaves out what would replace a file that isn't ours.
    void ChooseParts() {
        for (auto part = parts.begin(); part != parts.end();) {
            const auto& [name, way] = *part;
            const bool isFree = !IsThere(GetPath(name)) || IsOurs(name);
            if (!isFree && way == Way::Copy) {
                throw Exception(GetPath(name).string() + " is in the way of a part of the program");
            }
            if (!isFree) {
                foreign.insert(Installations::GetPlugin(name));
            }
            part = isFree ? std::next(part) : parts.erase(part);
        }
    }

    /// Before anything else: an interrupted copy is known as one and made whole the next time.
    void WriteFirst() {
        std::set<std::string> names = GetNames();
        names.insert(before.begin(), before.end());
        WriteMirrorRecord(copy.GetDirectory(), {sourceBefore, names});
    }

    bool IsStale(const std::string& name) const {
        return before.contains(name) && !parts.contains(name) && IsOurs(name);
    }

    /// What the source lists, then what else is listed here; a factory that lists the same names
    /// keeps their order.
    void UpdateList() {
        const PluginLists listed = copy.ReadLists();
        PluginLists lists = source.ReadLists();
        for (auto& [factory, plugins] : lists) {
            std::erase_if(plugins, [&](const auto& plugin) { return foreign.contains(plugin); });
        }
        for (const auto& [factory, plugins] : listed) {
            std::vector<std::string>& list = lists[factory];
            std::ranges::copy_if(plugins, std::back_inserter(list), [&](const std::string& plugin) {
                const std::string name = copy.GetModule(plugin).filename().string();
                return !IsStale(name) && std::ranges::count(list, plugin) == 0;
            });
            list = std::ranges::is_permutation(list, plugins) ? plugins : list;
        }
        std::erase_if(lists, [&](const auto& list) {
            const auto same = listed.find(list.first);
            return same == listed.end() ? list.second.empty() : same->second == list.second;
        });
        if (!lists.empty()) {
            Core::Utils::ReplacePluginLists(copy.GetPluginList().string(), lists);
            changed = true;
        }
    }

    void RemoveStale() {
        for (const std::string& name : before) {
            if (IsStale(name)) {
                fs::remove(GetPath(name));
                changed = true;
            }
        }
    }

    const Installation& source;
    const Installation& copy;
    std::map<std::string, Way> parts;
    fs::path sourceBefore;
    std::set<std::string> before;   // what is ours, if it wasn't replaced by hand
    std::set<std::string> foreign;  // plugins of the source whose names have another module here
    bool changed = false;
};

}  // namespace

std::optional<fs::path> GetSource(const Installation& installation) {
    const auto record = ReadMirrorRecord(installation.GetDirectory());
    return record ? std::optional(record->source) : std::nullopt;
}

bool Mirror(const Installation& source, const Installation& copy) {
    return Mirroring(source, copy).Run();
}

void CopyPrograms(const Installation& source, const fs::path& directory) {
    for (const auto& [name, way] : FindParts(source)) {
        if (way == Way::Copy) {
            Platform::ReplaceByCopy((source.GetDirectory() / name).native(),
                                    (directory / name).native());
        }
    }
}

}  // namespace Tarnex::Collect
