#include "report/Known.h"

#include <fmt/format.h>

#include "core/support/Exception.h"
#include "report/Environment.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::ItemKind;
using Parent::Verdict;

/// The facts of a module's file, which the ground has as well.
Parent::FileFacts ToFacts(const FileState& state) {
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    const timespec modified{state.modified / nanoseconds, state.modified % nanoseconds};
    return {state.path, state.size, ToIsoTime(modified, true), state.buildId};
}

std::optional<Parent::FileFacts> GetFile(const GroundTable& table, std::size_t place,
                                         const Item& item) {
    const auto& ground = table.items.at(place);
    const bool has = ground && !ground->files.empty() && item.kind != ItemKind::Codec;
    return has ? std::optional(ToFacts(table.files[ground->files.front()])) : std::nullopt;
}

/// Puts together what is known from before and what a check found.
class Merger {
public:
    Merger(const Known& known, const Report& report, const Scope& scope)
        : known(known), report(report), scope(scope) {}

    Known Run() {
        IndexFindings();
        for (std::size_t i = 0; i < known.items.size(); ++i) {
            if (IsKept(known.items[i])) {
                Add(known.items[i], known.ground, i);
            }
        }
        for (std::size_t i = 0; i < report.items.size(); ++i) {
            const Item& item = report.items[i];
            if (const auto found = findings.find(GetKey(item));
                found != findings.end() && found->second == i) {
                Add(item, report.ground, i);
            }
        }
        AddListed();
        AddOffer();
        merged.ground.environments = std::move(builder.table.environments);
        merged.ground.files = std::move(builder.table.files);
        merged.ground.libraries = std::move(builder.table.libraries);
        return std::move(merged);
    }

private:
    /// Only what this check really looked at, unless a later one was faster.
    void IndexFindings() {
        const auto before = IndexItems(known.items);
        for (const Item& item : report.items) {
            names.insert(item.name);
        }
        for (std::size_t i = 0; i < report.items.size(); ++i) {
            const Item& item = report.items[i];
            if (item.carried || item.verdict == Verdict::NotReached) {
                continue;
            }
            const std::string key = GetKey(item);
            const auto old = before.find(key);
            if (old == before.end() || known.items[old->second].checked <= item.checked) {
                findings[key] = i;
                CountListed(item);
            }
        }
    }

    void CountListed(const Item& item) {
        if (item.kind == ItemKind::Exercise) {
            listed.insert(item.plugin);
        } else if (item.kind == ItemKind::Plugin && item.verdict == Verdict::Good &&
                   scope.exercises && report.complete) {
            listed.insert(item.name);
        }
        offers = offers || item.kind == ItemKind::Codec;
    }

    bool IsKept(const Item& item) const {
        const std::string& plugin = item.kind == ItemKind::Plugin ? item.name : item.plugin;
        const bool isThere = item.kind == ItemKind::Codec || scope.plugins.contains(plugin);
        const bool isListed = item.kind != ItemKind::Exercise || !listed.contains(plugin) ||
                              names.contains(item.name);
        const bool isOffered =
            item.kind != ItemKind::Codec || !ReplacesOffer() || names.contains(item.name);
        return isThere && isListed && isOffered && !findings.contains(GetKey(item));
    }

    /// Whether the check knows all codecs that there are.
    bool ReplacesOffer() const { return scope.offered && offers && report.complete; }

    void Add(Item item, const GroundTable& table, std::size_t place) {
        item.carried = false;
        merged.items.push_back(std::move(item));
        merged.ground.items.push_back(builder.Adopt(table, table.items.at(place)));
    }

    void AddListed() {
        for (const auto& [plugin, exercises] : known.listed) {
            if (scope.plugins.contains(plugin) && !listed.contains(plugin)) {
                merged.listed[plugin] = exercises;
            }
        }
        for (const std::string& plugin : listed) {
            merged.listed[plugin];
        }
        for (const Item& item : report.items) {
            if (item.kind == ItemKind::Exercise && listed.contains(item.plugin)) {
                merged.listed[item.plugin].push_back(item.name);
            }
        }
    }

    void AddOffer() {
        if (ReplacesOffer()) {
            for (std::size_t i = 0; i < report.items.size(); ++i) {
                const auto& ground = report.ground.items.at(i);
                if (report.items[i].kind == ItemKind::Codec && !report.items[i].carried && ground) {
                    merged.offer = Offer{builder.AdoptLibraries(report.ground, ground->libraries),
                                         *scope.offered};
                    return;
                }
            }
        } else if (known.offer) {
            merged.offer = Offer{builder.AdoptLibraries(known.ground, known.offer->libraries),
                                 known.offer->modules};
        }
    }

    const Known& known;
    const Report& report;
    const Scope& scope;
    std::unordered_map<std::string, std::size_t> findings;  // places in the report
    std::set<std::string> listed;                           // modules with a new list
    bool offers = false;
    std::set<std::string> names;  // of the report's items
    GroundBuilder builder;
    Known merged;
};

Json ToJson(const Offer& offer) {
    return {{"libraries", offer.libraries}, {"modules", offer.modules}};
}

}  // namespace

std::string GetKey(const Item& item) {
    return fmt::format("{}\n{}\n{}", static_cast<int>(item.kind), item.depth, item.name);
}

std::unordered_map<std::string, std::size_t> IndexItems(const std::vector<Item>& items) {
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < items.size(); ++i) {
        places.emplace(GetKey(items[i]), i);
    }
    return places;
}

std::string RenderKnown(const Known& known) {
    Json items = Json::array();
    for (std::size_t i = 0; i < known.items.size(); ++i) {
        items.push_back(ToLeanJson(known.items[i]));
        if (GetFile(known.ground, i, known.items[i])) {
            items.back().erase("file");
        }
    }
    const Report report;
    return Render({{"schema", SCHEMA},
                   {"program", report.program},
                   {"items", std::move(items)},
                   {"ground", ToJson(known.ground)},
                   {"listed", known.listed},
                   {"offer", known.offer ? ToJson(*known.offer) : Json()}});
}

void CompleteFiles(Known& known) {
    for (std::size_t i = 0; i < known.items.size(); ++i) {
        if (!known.items[i].file) {
            known.items[i].file = GetFile(known.ground, i, known.items[i]);
        }
    }
}

Known ReadKnown(const boost::filesystem::path& path) {
    try {
        return ParseKnown(ReadText(path));
    } catch (const Exception& error) {
        throw Exception(path.string() + ": " + error.what());
    }
}

Known Merge(const Known& known, const Report& report, const Scope& scope) {
    return Merger(known, report, scope).Run();
}

}  // namespace Tarnex::Reports
