#include "report/Trust.h"

#include <fmt/format.h>

#include <algorithm>

namespace Tarnex::Reports {
namespace {

using Installations::Interface;
using Parent::Item;
using Parent::Verdict;

Interface GetInterface(const std::string& name, const Item& plugin) {
    const auto known =
        std::ranges::find(Installations::INTERFACES, name, &Installations::InterfaceTraits::name);
    return known == Installations::INTERFACES.end()
               ? Installations::FindInterface(plugin.file->path, plugin.factory)
               : known->interface;
}

std::string Describe(const Item& item) {
    return item.reason.empty() ? std::string(ToString(item.verdict))
                               : fmt::format("{}: {}", ToString(item.verdict), item.reason);
}

class TrustFinder {
public:
    TrustFinder(const Known& known, const Facts& facts)
        : known(known), facts(facts), check(known.ground, facts), places(IndexItems(known.items)) {
        for (std::size_t i = 0; i < known.items.size(); ++i) {
            if (known.items[i].kind == Parent::ItemKind::Exercise) {
                exercises[known.items[i].plugin].push_back(i);
            }
        }
    }

    void Add(const Item& plugin, Trust& trust) {
        const auto place = places.find(GetKey(plugin));
        const Item* before = place == places.end() ? nullptr : &known.items[place->second];
        TrustedModule module;
        module.name = plugin.name;
        module.file = plugin.file->path;
        const Interface interface = GetInterface(before ? before->interface : "", plugin);
        module.interface = Installations::TraitsOf(interface).name;
        const auto bundle =
            Installations::GetBundle(facts.installation.GetModule(plugin.name), interface);
        module.path = bundle.empty() ? module.file : bundle.native();
        const bool holds = before != nullptr && check.IsFirstFile(place->second, module.file) &&
                           check.Holds(place->second, plugin);
        if (!holds) {
            module.reason = before == nullptr ? "never checked" : "changed since it was checked";
            trust.unknown.push_back(std::move(module));
            return;
        }
        module.verdict = ToString(before->verdict);
        Judge(*before, std::move(module), trust);
    }

private:
    void Judge(const Item& plugin, TrustedModule module, Trust& trust) {
        if (plugin.verdict != Verdict::Good) {
            module.reason = plugin.reason.empty() ? Describe(plugin) : plugin.reason;
        } else if (!plugin.spoils.empty()) {
            module.reason = fmt::format("breaks {}", fmt::join(plugin.spoils, ", "));
        }
        const std::string open = AddExercises(module);
        if (!module.reason.empty()) {
            trust.bad.push_back(std::move(module));
        } else if (!open.empty()) {
            module.reason = open + ": changed since it was checked, or never checked";
            trust.unknown.push_back(std::move(module));
        } else {
            trust.trusted.push_back(std::move(module));
        }
    }

    /// Takes the verdicts that still hold. Returns the id of one that has none at any depth.
    std::string AddExercises(TrustedModule& module) {
        std::set<std::string> held;
        for (const std::size_t place : exercises[module.name]) {
            const Item& item = known.items[place];
            if (!check.Holds(place, item)) {
                continue;
            }
            held.insert(item.name);
            module.items.emplace_back(item.id, ToString(item.verdict));
            if (item.verdict != Verdict::Good && module.reason.empty()) {
                module.reason = fmt::format("{}: {}", item.id, Describe(item));
            }
        }
        const auto listed = known.listed.find(module.name);
        if (listed != known.listed.end()) {
            const auto open = std::ranges::find_if(
                listed->second, [&](const std::string& name) { return !held.contains(name); });
            return open == listed->second.end() ? "" : *open;
        }
        return "";
    }

    const Known& known;
    const Facts& facts;
    GroundCheck check;
    std::unordered_map<std::string, std::size_t> places;
    std::unordered_map<std::string, std::vector<std::size_t>> exercises;  // by module
};

Json ToJson(const std::vector<TrustedModule>& modules) {
    Json list = Json::array();
    for (const TrustedModule& module : modules) {
        Json items = Json::array();
        for (const auto& [id, verdict] : module.items) {
            items.push_back({{"id", id}, {"verdict", verdict}});
        }
        list.push_back({{"name", module.name},
                        {"interface", module.interface},
                        {"path", module.path},
                        {"verdict", module.verdict},
                        {"reason", module.reason},
                        {"items", std::move(items)}});
    }
    return list;
}

}  // namespace

Trust FindTrust(const Known& known, const Facts& facts, const std::vector<Item>& plugins) {
    Trust trust;
    TrustFinder finder(known, facts);
    for (const Item& plugin : plugins) {
        if (plugin.file) {
            finder.Add(plugin, trust);
        }
    }
    return trust;
}

Json ToJson(const Trust& trust) {
    return {{"schema", SCHEMA},
            {"trusted", ToJson(trust.trusted)},
            {"bad", ToJson(trust.bad)},
            {"unknown", ToJson(trust.unknown)}};
}

}  // namespace Tarnex::Reports
