#include "collect/Update.h"

#include <fmt/format.h>

#include <sys/stat.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <iterator>
#include <set>
#include <utility>

#include "core/media/PluginFactories.h"
#include "core/support/Constants.h"
#include "platform/AtomicFile.h"
#include "support/PluginList.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

using Core::Utils::PluginLists;
using Installations::FileId;
using Installations::Installation;

bool IsKindOfOthers(const std::string& factory) {
    return std::ranges::count(MODULE_KINDS, factory, &ModuleKind::GetFactory) > 0;
}

// Replaces the characters that plugin names can't contain.
std::string MakePluginName(std::string name) {
    std::ranges::replace_if(
        name,
        [](unsigned char byte) {
            const bool alphanumeric = (byte >= '0' && byte <= '9') ||
                                      (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
            return !alphanumeric &&
                   std::string_view("._+-").find(static_cast<char>(byte)) == std::string_view::npos;
        },
        '_');
    return name;
}

/// Empty if it isn't a link.
fs::path ReadLink(const fs::path& path) {
    boost::system::error_code noLink;
    return fs::read_symlink(path, noLink);
}

/// None if the file is gone. What only can't be reached now isn't.
std::optional<FileId> FindFile(const fs::path& path) {
    struct stat facts {};
    if (stat(path.c_str(), &facts) == 0) {
        return FileId(facts.st_dev, facts.st_ino);
    }
    return errno == ENOENT || errno == ENOTDIR ? std::nullopt : std::optional<FileId>({0, 0});
}

class Updater {
public:
    Updater(const Installation& installation, CollectRecord& record)
        : installation(installation), record(record), listsBefore(installation.ReadLists()) {
        for (const auto& [factory, names] : listsBefore) {
            for (const std::string& name : names) {
                if (!IsKindOfOthers(factory) || !IsGone(factory, name)) {
                    taken.insert(name);
                }
            }
        }
    }

    Changes Update(const std::vector<FoundModule>& modules) {
        const CollectRecord before = record;
        for (const FoundModule& module : modules) {
            if (linked.emplace(module.kind->GetFactory(), module.id).second) {
                Enter(module);
            }
        }
        if (record != before) {
            WriteCollectRecord(installation, record);
        }
        Link();
        WriteList();
        RemoveGone();
        return std::move(changes);
    }

private:
    fs::path File(const std::string& name) const { return installation.GetModule(name); }

    bool IsGone(const std::string& factory, const std::string& name) {
        const auto file = FindFile(File(name));
        if (file) {
            linked.emplace(factory, *file);
        } else if (IsOurs(name)) {
            gone.insert(name);
        }
        return gone.contains(name);
    }

    bool IsOurs(const std::string& name) const {
        const auto link = record.links.find(name);
        return link != record.links.end() && ReadLink(File(name)) == link->second;
    }

    void Enter(const FoundModule& module) {
        const std::string name = ChooseName(module);
        taken.insert(name);
        newNames[std::string(module.kind->GetFactory())].push_back(name);
        newLinks.emplace(name, module.path);
        record.links[name] = module.path;
    }

    std::string ChooseName(const FoundModule& module) {
        const std::string suffix(module.kind->suffix);
        const std::string wanted = MakePluginName(module.name);
        std::string name = wanted + suffix;
        for (int number = 2; !IsFree(name); ++number) {
            name = fmt::format("{}-{}{}", wanted, number, suffix);
        }
        if (name != wanted + suffix) {
            changes.renamed.push_back(module.path.string() + " is named " + name + ": the name " +
                                      wanted + suffix + " is taken");
        }
        return name;
    }

    // An unlisted link of ours is left over from an interrupted update.
    bool IsFree(const std::string& name) const {
        return !taken.contains(name) &&
               (!fs::exists(fs::symlink_status(File(name))) || IsOurs(name));
    }

    void Link() {
        for (const auto& [name, target] : newLinks) {
            if (ReadLink(File(name)) != target) {
                Platform::ReplaceByLink(target.native(), File(name).native());
            }
            changes.linked.push_back(name);
        }
    }

    void WriteList() {
        PluginLists lists;
        for (const auto& [factory, names] : listsBefore) {
            if (IsKindOfOthers(factory) &&
                std::ranges::any_of(names, [&](const auto& name) { return gone.contains(name); })) {
                lists[factory] = names;
            }
        }
        for (const auto& [factory, names] : newNames) {
            lists.try_emplace(factory, Before(factory));
        }
        for (auto& [factory, names] : lists) {
            std::erase_if(names, [&](const auto& name) { return gone.contains(name); });
            std::ranges::copy(newNames[factory], std::back_inserter(names));
            std::ranges::sort(names);
        }
        if (!lists.empty()) {
            Core::Utils::ReplacePluginLists(installation.GetPluginList().string(), lists);
        }
    }

    std::vector<std::string> Before(const std::string& factory) const {
        const auto list = listsBefore.find(factory);
        return list == listsBefore.end() ? std::vector<std::string>() : list->second;
    }

    void RemoveGone() {
        std::erase_if(gone, [&](const std::string& name) { return newLinks.contains(name); });
        for (const std::string& name : gone) {
            fs::remove(File(name));
            record.links.erase(name);
            changes.removed.push_back(name);
        }
        if (!gone.empty()) {
            WriteCollectRecord(installation, record);
        }
    }

    const Installation& installation;
    CollectRecord& record;
    const PluginLists listsBefore;
    std::set<std::pair<std::string, FileId>> linked;  // by factory
    std::set<std::string> gone;
    PluginLists newNames;
    std::map<std::string, fs::path> newLinks;
    // Starts with the names that have another meaning in the program.
    std::set<std::string> taken{Core::OGL_MANAGER, Core::Utils::EMPTY_VALUE};
    Changes changes;
};

}  // namespace

Changes UpdateInstallation(const Installation& installation,
                           const std::vector<FoundModule>& modules, CollectRecord& record) {
    return Updater(installation, record).Update(modules);
}

CollectRecord FindUnrecordedLinks(const Installation& installation, const fs::path& source) {
    CollectRecord record;
    for (const auto& [factory, names] : installation.ReadLists()) {
        for (const std::string& name : names) {
            const fs::path target = ReadLink(installation.GetModule(name));
            if (IsKindOfOthers(factory) && !target.empty() && target.parent_path() != source) {
                record.links.emplace(name, target);
            }
        }
    }
    return record;
}

}  // namespace Tarnex::Collect
