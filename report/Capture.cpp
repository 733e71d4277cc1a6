#include "report/Capture.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <fstream>

#include "installation/ModuleFile.h"
#include "platform/Environment.h"
#include "report/LoaderTrace.h"

namespace Tarnex::Reports {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;
using Parent::ItemKind;
using Parent::Verdict;
using Paths = std::set<std::string>;

/// Caches and data files that a process maps change by themselves, so only programs and libraries
/// count.
bool IsElfFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    char magic[4] = {};
    return file.read(magic, sizeof magic) && std::string_view(magic, 4) ==
                                                 "\x7f"
                                                 "ELF";
}

std::string Resolve(const std::string& path) {
    boost::system::error_code error;
    const fs::path resolved = fs::canonical(path, error);
    return error ? path : resolved.native();
}

Paths ResolveAll(const Paths& paths) {
    Paths resolved;
    std::ranges::transform(paths, std::inserter(resolved, resolved.end()), Resolve);
    return resolved;
}

class Capturer {
public:
    Capturer(Report& report, const Installations::Installation& installation, const Facts& facts,
             const std::vector<Item>& plugins, const timespec& started)
        : report(report),
          installation(installation),
          facts(facts),
          started(started.tv_sec * 1'000'000'000LL + started.tv_nsec),
          environment(builder.AddEnvironment(facts.environment)) {
        for (const Item& plugin : plugins) {
            modules[plugin.name] = plugin.file ? plugin.file->path : "";
        }
    }

    void Run(const Known& known) {
        const auto before = IndexItems(known.items);
        DescribePhases();
        TraceBadModules();
        for (const Item& item : report.items) {
            const auto old = before.find(GetKey(item));
            builder.table.items.push_back(
                !item.carried ? DescribeItem(item)
                : old == before.end()
                    ? std::nullopt
                    : builder.Adopt(known.ground, known.ground.items[old->second]));
        }
        report.ground = std::move(builder.table);
    }

private:
    void DescribePhases() {
        Paths shared = report.moduleFiles;
        for (const auto& [name, path] : modules) {
            shared.erase(path);
        }
        if (!report.moduleFiles.empty()) {
            ofGood = Describe(shared, FindNames(shared));
        }
        if (!report.codecFiles.empty()) {
            ofCodecs = Describe(report.codecFiles, FindNames(report.codecFiles));
        }
    }

    static bool NeedsTrace(const Item& item) {
        return item.kind == ItemKind::Plugin && !item.carried && item.file &&
               item.verdict != Verdict::Good && item.verdict != Verdict::NotReached;
    }

    /// Together with the modules that have to be loaded before it.
    void TraceBadModules() {
        std::set<std::string> paths;
        for (const Item& item : report.items) {
            if (NeedsTrace(item)) {
                std::ranges::copy(FindModules(item), std::inserter(paths, paths.end()));
            }
        }
        const std::vector<std::string> traced(paths.begin(), paths.end());
        const auto traces = TraceLoader(traced);
        std::map<std::string, LoaderTrace> byPath;
        for (std::size_t i = 0; i < traced.size(); ++i) {
            byPath[traced[i]] = traces[i];
        }
        for (const Item& item : report.items) {
            if (NeedsTrace(item)) {
                LoaderTrace needed;
                for (const std::string& path : FindModules(item)) {
                    needed.files.merge(ResolveAll(byPath[path].files));
                    needed.names.merge(Paths(byPath[path].names));
                }
                ofBad[item.name] = Describe(needed.files, needed.names);
            }
        }
    }

    /// Those that lead to one of the files.
    Paths FindNames(const Paths& files) const {
        Paths names;
        for (const auto& [name, path] : facts.cache.GetNames()) {
            if (files.contains(facts.cache.Resolve(name))) {
                names.insert(name);
            }
        }
        return names;
    }

    /// None if a file isn't what it was when the check began.
    std::optional<std::size_t> Describe(const Paths& files, const Paths& names) {
        Libraries libraries{environment, {}, {}};
        Paths all = files;
        for (const fs::path& program :
             {installation.GetProgram(), installation.GetLister(), installation.GetExerciser()}) {
            all.insert(Resolve(program.native()));
        }
        all.insert(Platform::GetProgramPath());
        for (const std::string& path : all) {
            const auto file = IsElfFile(path) ? AddFile(path) : SIZE_MAX;
            if (!file) {
                return std::nullopt;
            }
            if (*file != SIZE_MAX) {
                libraries.files.push_back(*file);
            }
        }
        for (const std::string& name : names) {
            libraries.names[name] = facts.cache.Resolve(name);
        }
        return builder.AddLibraries(libraries);
    }

    std::optional<std::size_t> AddFile(const std::string& path) {
        auto& known = files[path];
        if (!known) {
            auto state = ReadFileState(path);
            if (!state || state->changed >= started) {
                return std::nullopt;
            }
            state->buildId = Installations::ReadBuildId(path);
            known = builder.AddFile(*state);
        }
        return known;
    }

    std::optional<Ground> DescribeItem(const Item& item) {
        const bool isCodec = item.kind == ItemKind::Codec;
        const auto traced = ofBad.find(item.name);
        const auto libraries = isCodec ? ofCodecs
                               : item.kind == ItemKind::Plugin && traced != ofBad.end()
                                   ? traced->second
                                   : ofGood;
        if (!libraries || item.verdict == Verdict::NotReached || item.verdict == Verdict::Missing) {
            return std::nullopt;
        }
        return AddFiles(*libraries, isCodec ? facts.FindSamples(item) : FindModules(item));
    }

    /// The item's own first.
    std::vector<std::string> FindModules(const Item& item) const {
        std::vector<std::string> names = item.company;
        names.insert(names.begin(), item.kind == ItemKind::Plugin ? item.name : item.plugin);
        std::vector<std::string> paths;
        for (const std::string& name : names) {
            const auto module = modules.find(name);
            paths.push_back(module == modules.end() ? "" : module->second);
        }
        return paths;
    }

    std::optional<Ground> AddFiles(std::size_t libraries, const std::vector<std::string>& paths) {
        Ground ground{libraries, {}};
        for (const std::string& path : paths) {
            const auto file = AddFile(path);
            if (!file) {
                return std::nullopt;
            }
            ground.files.push_back(*file);
        }
        return ground;
    }

    Report& report;
    const Installations::Installation& installation;
    const Facts& facts;
    const std::int64_t started;
    GroundBuilder builder;
    const std::size_t environment;
    std::map<std::string, std::string> modules;  // resolved paths by name
    std::map<std::string, std::optional<std::size_t>> files;
    std::optional<std::size_t> ofGood;
    std::optional<std::size_t> ofCodecs;
    std::map<std::string, std::optional<std::size_t>> ofBad;  // by plugin
};

}  // namespace

void AddGround(Report& report, const Installations::Installation& installation, const Facts& facts,
               const Known& known, const std::vector<Item>& plugins, const timespec& started) {
    Capturer(report, installation, facts, plugins, started).Run(known);
}

}  // namespace Tarnex::Reports
