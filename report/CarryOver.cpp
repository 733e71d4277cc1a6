#include "report/CarryOver.h"

#include <algorithm>
#include <cstdlib>

#include "core/media/PluginFactories.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::ItemKind;
using Parent::Verdict;

constexpr double STRESS_FACTOR = 10;  // an exercise at that depth may take so many item times

/// A longer limit may let a hang end, and a shorter one may make any other item hang.
bool Fits(const Item& item, const CarryRules& rules) {
    const double limit =
        static_cast<double>(rules.itemTime.count()) * (item.depth == "stress" ? STRESS_FACTOR : 1);
    return item.verdict == Verdict::Hung ? limit <= std::atof(item.reason.c_str())
                                         : item.seconds.value_or(0) <= limit;
}

bool IsLeftOut(const Item& plugin) {
    return EndsRuns(plugin.verdict) || plugin.verdict == Verdict::Failed;
}

class Carrier {
public:
    Carrier(const Known& known, const Facts& facts, const CarryRules& rules,
            const Parent::CheckOptions& wanted, std::vector<Item>& plugins)
        : known(known),
          rules(rules),
          wanted(wanted),
          plugins(plugins),
          check(known.ground, facts),
          places(IndexItems(known.items)) {}

    Parent::Carried Run() {
        std::ranges::for_each(plugins, [this](Item& plugin) { CarryPlugin(plugin); });
        for (std::size_t i = 0; i < known.items.size(); ++i) {
            CarryOther(i);
        }
        if (rules.all) {
            FindListed();
            carried.allCodecs = IsOfferComplete();
        }
        return std::move(carried);
    }

private:
    bool IsToCarry(std::size_t place) {
        const Item& item = known.items[place];
        const bool isKind = rules.all || EndsRuns(item.verdict);
        return isKind && Fits(item, rules) && check.Holds(place, item);
    }

    /// The media core has to be started without bad ones also where only codecs are wanted.
    void CarryPlugin(Item& plugin) {
        const auto found = places.find(GetKey(plugin));
        if (found == places.end() || plugin.verdict != Verdict::NotReached || !plugin.file) {
            return;
        }
        const Item& before = known.items[found->second];
        const bool isWanted = wanted.Wants(plugin) || (wanted.codecs && IsLeftOut(before));
        if (isWanted && check.IsFirstFile(found->second, plugin.file->path) &&
            IsToCarry(found->second)) {
            const std::string factory = plugin.factory;
            plugin = before;
            plugin.factory = factory;
            plugin.carried = true;
            good.insert(plugin.verdict == Verdict::Good ? plugin.name : "");
        }
    }

    void CarryOther(std::size_t place) {
        const Item& item = known.items[place];
        const bool isWanted =
            item.kind == ItemKind::Exercise
                ? item.depth == rules.depth && good.contains(item.plugin)
                : item.kind == ItemKind::Codec && wanted.codecs && wanted.Wants(item);
        if (isWanted && IsToCarry(place)) {
            auto& items = item.kind == ItemKind::Codec ? carried.codecs : carried.exercises;
            items.push_back(item);
            items.back().carried = true;
            names.insert(item.name);
        }
    }

    /// Modules all of whose exercises have a verdict.
    void FindListed() {
        for (const auto& [plugin, exercises] : known.listed) {
            if (good.contains(plugin) &&
                std::ranges::all_of(exercises, [this](const std::string& exercise) {
                    return names.contains(exercise);
                })) {
                carried.listed.insert(plugin);
            }
        }
    }

    bool IsOfferComplete() {
        return known.offer && check.HoldLibraries(known.offer->libraries) &&
               GetCodecModules(plugins) == known.offer->modules &&
               std::ranges::all_of(known.items, [this](const Item& item) {
                   return item.kind != ItemKind::Codec || !wanted.Wants(item) ||
                          names.contains(item.name);
               });
    }

    const Known& known;
    const CarryRules& rules;
    const Parent::CheckOptions& wanted;
    std::vector<Item>& plugins;
    GroundCheck check;
    std::unordered_map<std::string, std::size_t> places;
    std::set<std::string> good;   // plugins taken over as such
    std::set<std::string> names;  // of exercises and codecs taken over
    Parent::Carried carried;
};

}  // namespace

std::set<std::string> GetCodecModules(const std::vector<Item>& plugins) {
    std::set<std::string> modules;
    for (const Item& plugin : plugins) {
        const bool offersCodecs = plugin.factory == Core::CODEC_FACTORY ||
                                  plugin.factory == Core::MUXER_FACTORY ||
                                  plugin.factory == Core::PARSER_FACTORY;
        if (offersCodecs && plugin.file && !IsLeftOut(plugin)) {
            modules.insert(plugin.name);
        }
    }
    return modules;
}

Parent::Carried CarryOver(const Known& known, const Facts& facts, const CarryRules& rules,
                          const Parent::CheckOptions& wanted, std::vector<Item>& plugins) {
    return Carrier(known, facts, rules, wanted, plugins).Run();
}

}  // namespace Tarnex::Reports
