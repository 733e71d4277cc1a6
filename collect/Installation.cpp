#include "collect/Installation.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <set>
#include <utility>

#include "core/media/PluginFactories.h"
#include "core/support/Constants.h"
#include "core/support/ioPath.h"
#include "support/PluginList.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

using Core::Utils::PluginLists;

bool IsKindOfOthers(const std::string& factory) {
    return std::ranges::count(MODULE_KINDS, factory, &ModuleKind::factory) > 0;
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

class Updater {
public:
    explicit Updater(const fs::path& directory)
        : directory(directory),
          list((directory / Core::PLUGIN_LIST_FILE).string()),
          oldNames(list.exists() ? Core::Utils::ReadPluginLists(list) : PluginLists()) {
        for (const auto& [factory, names] : oldNames) {
            for (const std::string& name : names) {
                if (IsKindOfOthers(factory) && fs::is_symlink(fs::symlink_status(File(name)))) {
                    oldLinks.emplace(name, std::pair(factory, fs::read_symlink(File(name))));
                } else {
                    taken.insert(name);
                    if (IsKindOfOthers(factory)) {
                        newNames[factory].push_back(name);
                    }
                }
            }
        }
    }

    Changes Update(const std::vector<FoundModule>& modules) {
        for (const ModuleKind& kind : MODULE_KINDS) {
            newNames[std::string(kind.factory)];
        }
        Name(modules);
        Link();
        for (auto& [factory, names] : newNames) {
            std::ranges::sort(names);
        }
        WriteList();
        RemoveOldLinks();
        return std::move(changes);
    }

private:
    fs::path File(const std::string& name) const { return directory / (name + ".so"); }

    // Names the modules that were linked before first, so that no new module takes their names.
    void Name(const std::vector<FoundModule>& modules) {
        std::map<std::pair<std::string, fs::path>, std::string> nameBefore;
        for (const auto& [name, target] : oldLinks) {
            nameBefore.emplace(target, name);
        }
        std::vector<FoundModule> unnamed;
        for (const FoundModule& module : modules) {
            const auto before = nameBefore.find({std::string(module.kind->factory), module.path});
            if (before != nameBefore.end()) {
                Enter(before->second, module);
            } else {
                unnamed.push_back(module);
            }
        }
        for (const FoundModule& module : unnamed) {
            Enter(ChooseName(module), module);
        }
    }

    void Enter(const std::string& name, const FoundModule& module) {
        taken.insert(name);
        newNames[std::string(module.kind->factory)].push_back(name);
        newLinks.emplace(name, module.path);
    }

    std::string ChooseName(const FoundModule& module) {
        const std::string wanted = MakePluginName(module.name);
        std::string name = wanted;
        for (int number = 2; !IsFree(name, module.path); ++number) {
            name = wanted + "-" + std::to_string(number);
        }
        if (name != wanted) {
            changes.renamed.push_back(module.path.string() + " is named " + name + ": the name " +
                                      wanted + " is taken");
        }
        return name;
    }

    // An unlisted link to the very same file is left over from an interrupted update.
    bool IsFree(const std::string& name, const fs::path& target) const {
        const fs::file_status status = fs::symlink_status(File(name));
        return !taken.contains(name) &&
               (!fs::exists(status) || oldLinks.contains(name) ||
                (fs::is_symlink(status) && fs::read_symlink(File(name)) == target));
    }

    void Link() {
        for (const auto& [name, target] : newLinks) {
            const bool isThere = fs::is_symlink(fs::symlink_status(File(name)));
            if (isThere && fs::read_symlink(File(name)) == target) {
                continue;
            }
            fs::remove(File(name));
            fs::create_symlink(target, File(name));
            changes.linked.push_back(name);
        }
    }

    void WriteList() {
        PluginLists namesAfter = oldNames;
        for (const auto& [factory, names] : newNames) {
            namesAfter[factory] = names;
        }
        if (namesAfter != oldNames) {
            Core::Utils::ReplacePluginLists(list, newNames);
            changes.listWritten = true;
        }
    }

    void RemoveOldLinks() {
        for (const auto& [name, target] : oldLinks) {
            if (!newLinks.contains(name)) {
                fs::remove(File(name));
                changes.removed.push_back(name);
            }
        }
    }

    fs::path directory;
    ioPath list;
    PluginLists oldNames;
    std::map<std::string, std::pair<std::string, fs::path>> oldLinks;
    PluginLists newNames;
    std::map<std::string, fs::path> newLinks;
    // Starts with the names that have another meaning in the program.
    std::set<std::string> taken{Core::OGL_MANAGER, Core::Utils::EMPTY_VALUE};
    Changes changes;
};

}  // namespace

Changes UpdateInstallation(const fs::path& directory, const std::vector<FoundModule>& modules) {
    return Updater(directory).Update(modules);
}

}  // namespace Tarnex::Collect
