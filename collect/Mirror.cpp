#include "collect/Mirror.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "core/media/PluginFactories.h"
#include "core/support/Exception.h"
#include "platform/Files.h"
#include "support/PluginList.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;
using Core::Utils::PluginLists;

constexpr const char* RESOURCES = "resources";
constexpr const char* SOURCE_FILE = ".copied-from";

bool IsProgram(const fs::path& name) {
    return name == "Assayer" || name == "assayer-list" || name.string().starts_with("lib");
}

PluginLists ReadList(const fs::path& directory) {
    const fs::path path = directory / Core::PLUGIN_LIST_FILE;
    return fs::exists(path) ? Core::Utils::ReadPluginLists(path.string()) : PluginLists();
}

class Mirroring {
public:
    Mirroring(const fs::path& source, const fs::path& directory)
        : source(source), directory(directory) {}

    bool Run() {
        Mark();
        for (const fs::directory_entry& entry : fs::directory_iterator(source)) {
            const fs::path name = entry.path().filename();
            if (IsProgram(name)) {
                Copy(entry.path(), directory / name);
            } else if (name.extension() == ".so") {
                Link(entry.path(), directory / name);
            }
        }
        LinkResources();
        UpdateList();
        RemoveStale();
        return changed;
    }

private:
    /// The mark is there first: an interrupted copy is known as one and made whole the next time.
    void Mark() {
        fs::create_directories(directory);
        const auto before = GetSource(directory);
        if (!before && !fs::is_empty(directory)) {
            throw Exception(directory.string() + ": neither empty nor an installation");
        }
        sources = {source, before.value_or(source)};
        if (before != source) {
            Platform::ReplaceFile((directory / SOURCE_FILE).native(), source.string() + "\n");
            changed = true;
        }
    }

    /// The copy has the time of change of what it was made from, and so shows whether that changed.
    void Copy(const fs::path& from, const fs::path& to) {
        if (!fs::exists(to) || fs::file_size(from) != fs::file_size(to) ||
            fs::last_write_time(from) != fs::last_write_time(to)) {
            const fs::path fresh = to.string() + ".new";
            fs::copy_file(from, fresh, fs::copy_options::overwrite_existing);
            fs::last_write_time(fresh, fs::last_write_time(from));
            Install(fresh, to);
        }
    }

    void Link(const fs::path& target, const fs::path& link) {
        if (!fs::is_symlink(link) || fs::read_symlink(link) != target) {
            const fs::path fresh = link.string() + ".new";
            fs::remove(fresh);
            fs::create_symlink(target, fresh);
            Install(fresh, link);
        }
    }

    /// In folders of its own, so that people can put samples beside those of the source.
    void LinkResources() {
        if (fs::is_symlink(directory / RESOURCES)) {
            fs::remove(directory / RESOURCES);
        }
        if (!fs::exists(source / RESOURCES)) {
            return;
        }
        fs::create_directories(directory / RESOURCES);
        for (const fs::directory_entry& entry :
             fs::recursive_directory_iterator(source / RESOURCES)) {
            const fs::path path = directory / entry.path().lexically_relative(source);
            if (fs::is_directory(entry.path())) {
                fs::create_directories(path);
            } else {
                Link(entry.path(), path);
            }
        }
    }

    void Install(const fs::path& fresh, const fs::path& path) {
        fs::rename(fresh, path);
        changed = true;
    }

    bool IsLinkToSource(const fs::path& path) const {
        if (!fs::is_symlink(path)) {
            return false;
        }
        const fs::path target = fs::read_symlink(path);
        const fs::path name = path.lexically_relative(directory);
        return std::ranges::any_of(sources,
                                   [&](const fs::path& from) { return target == from / name; });
    }

    /// Collected, or put here by hand.
    bool IsOwn(const std::string& plugin) const {
        const fs::path file = directory / (plugin + ".so");
        return fs::exists(fs::symlink_status(file)) && !IsLinkToSource(file);
    }

    /// What the source lists, then what is this directory's own; a factory that lists the same
    /// names keeps their order.
    void UpdateList() {
        const PluginLists before = ReadList(directory);
        PluginLists after = ReadList(source);
        for (const auto& [factory, plugins] : before) {
            std::vector<std::string>& list = after[factory];
            std::ranges::copy_if(plugins, std::back_inserter(list), [&](const std::string& plugin) {
                return IsOwn(plugin) && std::ranges::count(list, plugin) == 0;
            });
            list = std::ranges::is_permutation(list, plugins) ? plugins : list;
        }
        if (std::ranges::any_of(after, [&](const auto& list) {
                const auto same = before.find(list.first);
                return same == before.end() ? !list.second.empty() : same->second != list.second;
            })) {
            WriteList(after);
        }
    }

    void WriteList(const PluginLists& lists) {
        const fs::path fresh = directory / (std::string(Core::PLUGIN_LIST_FILE) + ".new");
        fs::copy_file(source / Core::PLUGIN_LIST_FILE, fresh, fs::copy_options::overwrite_existing);
        Core::Utils::ReplacePluginLists(fresh.string(), lists);
        Install(fresh, directory / Core::PLUGIN_LIST_FILE);
    }

    void RemoveStale() {
        std::vector<fs::path> stale;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
            const fs::path name = entry.path().lexically_relative(directory);
            if ((IsProgram(name) || IsLinkToSource(entry.path())) && !fs::exists(source / name)) {
                stale.push_back(entry.path());
            }
        }
        for (const fs::path& path : stale) {
            fs::remove(path);
            changed = true;
        }
    }

    const fs::path& source;
    const fs::path& directory;
    std::set<fs::path> sources;  // this one, and the one before
    bool changed = false;
};

}  // namespace

std::optional<fs::path> GetSource(const fs::path& directory) {
    std::ifstream file(directory / SOURCE_FILE);
    std::string source;
    return std::getline(file, source) ? std::optional<fs::path>(source) : std::nullopt;
}

bool Mirror(const fs::path& source, const fs::path& directory) {
    return Mirroring(source, directory).Run();
}

}  // namespace Tarnex::Collect
