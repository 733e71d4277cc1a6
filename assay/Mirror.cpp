#include "assay/Mirror.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>

#include "assay/FileOutput.h"
#include "collect/PluginList.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;
using Collect::PluginNames;

constexpr const char* SOURCE_FILE = ".copied-from";
constexpr const char* LIST_NAME = "plugins.list";

bool IsProgram(const fs::path& name) {
    const std::string text = name.string();
    return text == "Assayer" || text == "assayer-list" || text.starts_with("lib");
}

bool IsLinked(const fs::path& name) {
    return name == "resources" || (name.extension() == ".so" && !IsProgram(name));
}

class Mirroring {
public:
    Mirroring(const fs::path& source, const fs::path& directory)
        : source(source), directory(directory), sources{source} {
        if (const auto before = GetSource(directory)) {
            sources.insert(*before);
        }
    }

    bool Run() {
        Prepare();
        std::set<fs::path> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(source)) {
            Take(entry.path(), names);
        }
        const PluginNames listed = MergeLists();
        RemoveStale(names);
        WriteList(listed);
        return changed;
    }

private:
    /// The mark is there first: an interrupted copy is known as one and made whole the next time.
    void Prepare() {
        fs::create_directories(directory);
        if (GetSource(directory) == source) {
            return;
        }
        if (!GetSource(directory) && !fs::is_empty(directory)) {
            throw Exception(directory.string() +
                            ": neither empty nor an installation made by this command");
        }
        WriteFile(directory / SOURCE_FILE, source.string() + "\n");
        changed = true;
    }

    void Take(const fs::path& path, std::set<fs::path>& names) {
        const fs::path name = path.filename();
        if (IsProgram(name)) {
            Copy(path, directory / name);
        } else if (IsLinked(name)) {
            Link(path, directory / name);
        } else {
            return;
        }
        names.insert(name);
    }

    /// The copy has the time of change of what it was made from, and so shows whether that is
    /// newer.
    void Copy(const fs::path& from, const fs::path& to) {
        if (fs::is_regular_file(fs::symlink_status(to)) &&
            fs::file_size(from) == fs::file_size(to) &&
            fs::last_write_time(from) == fs::last_write_time(to)) {
            return;
        }
        const fs::path fresh = GetFresh(to);
        fs::copy_file(from, fresh, fs::copy_options::overwrite_existing);
        fs::last_write_time(fresh, fs::last_write_time(from));
        Install(fresh, to);
    }

    void Link(const fs::path& target, const fs::path& link) {
        if (fs::is_symlink(fs::symlink_status(link)) && fs::read_symlink(link) == target) {
            return;
        }
        const fs::path fresh = GetFresh(link);
        fs::remove(fresh);
        fs::create_symlink(target, fresh);
        Install(fresh, link);
    }

    static fs::path GetFresh(const fs::path& path) {
        return path.parent_path() / ("." + path.filename().string() + std::to_string(getpid()));
    }

    void Install(const fs::path& fresh, const fs::path& path) {
        fs::rename(fresh, path);
        changed = true;
    }

    bool IsLinkToSource(const fs::path& path) const {
        return fs::is_symlink(fs::symlink_status(path)) &&
               sources.contains(fs::read_symlink(path).parent_path());
    }

    /// Listed here, and no module of the source: collected, or put here by hand.
    bool IsOwn(const std::string& plugin) const {
        const fs::path file = directory / (plugin + ".so");
        return fs::exists(fs::symlink_status(file)) && !IsLinkToSource(file);
    }

    PluginNames MergeLists() const {
        PluginNames merged = Collect::ReadPluginList((source / LIST_NAME).string());
        for (const auto& [factory, plugins] :
             Collect::ReadPluginList((directory / LIST_NAME).string())) {
            std::vector<std::string>& list = merged[factory];
            std::ranges::copy_if(plugins, std::back_inserter(list), [&](const std::string& plugin) {
                return IsOwn(plugin) && std::ranges::count(list, plugin) == 0;
            });
        }
        return merged;
    }

    void RemoveStale(const std::set<fs::path>& names) {
        for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
            const fs::path name = entry.path().filename();
            const bool isOurs = IsProgram(name) || IsLinkToSource(entry.path());
            if (isOurs && !names.contains(name)) {
                fs::remove(entry.path());
                changed = true;
            }
        }
    }

    /// Whoever sorted the names of a factory keeps that order.
    static bool IsSame(const PluginNames& one, const PluginNames& other) {
        const auto sort = [](const PluginNames& names) {
            std::set<std::pair<std::string, std::string>> all;
            for (const auto& [factory, plugins] : names) {
                for (const std::string& plugin : plugins) {
                    all.emplace(factory, plugin);
                }
            }
            return all;
        };
        return sort(one) == sort(other);
    }

    void WriteList(const PluginNames& listed) {
        const fs::path list = directory / LIST_NAME;
        if (fs::exists(list) && IsSame(Collect::ReadPluginList(list.string()), listed)) {
            return;
        }
        const fs::path fresh = GetFresh(list);
        fs::copy_file(source / LIST_NAME, fresh, fs::copy_options::overwrite_existing);
        Collect::ReplaceInPluginList(fresh.string(), listed);
        Install(fresh, list);
    }

    fs::path source;
    fs::path directory;
    std::set<fs::path> sources;  // this one, and the one before
    bool changed = false;
};

}  // namespace

std::optional<fs::path> GetSource(const fs::path& directory) {
    std::ifstream file(directory / SOURCE_FILE);
    std::string source;
    if (!std::getline(file, source)) {
        return std::nullopt;
    }
    return source;
}

bool Mirror(const fs::path& source, const fs::path& directory) {
    return Mirroring(source, directory).Run();
}

}  // namespace Tarnex::Assay
