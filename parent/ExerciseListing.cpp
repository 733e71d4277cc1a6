#include "parent/ExerciseListing.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_set>

namespace Tarnex::Parent {
namespace {

using Json = nlohmann::json;
using Installations::Interface;

Interface ParseInterface(const std::string& name) {
    const auto found =
        std::ranges::find(Installations::INTERFACES, name, &Installations::InterfaceTraits::name);
    return found == Installations::INTERFACES.end() ? Interface::Own : found->interface;
}

bool IsListed(const Item& plugin) {
    return plugin.verdict == Verdict::Good && ParseInterface(plugin.interface) != Interface::Own;
}

class Lister {
public:
    Lister(Session& session, const ExerciseRequests& requests, const std::vector<Item>& plugins,
           const Carried& carried)
        : session(session), requests(requests), plugins(plugins) {
        for (const Item& item : carried.exercises) {
            known[item.plugin].push_back(item);
        }
        for (const Item& plugin : plugins) {
            const bool isKnown = plugin.carried && session.options.depth == "load";
            if (!IsListed(plugin) || !session.options.Wants(plugin) || isKnown) {
                continue;
            }
            if (carried.listed.contains(plugin.name)) {
                found[plugin.name] = known[plugin.name];
            } else {
                (session.IsLast(plugin.name) ? last : modules).push_back(plugin.name);
            }
        }
    }

    std::vector<Item> List() {
        session.runs.progress.phase = "listing";
        while (!modules.empty() && ListAll()) {
        }
        for (const std::string& module : last) {
            modules = {module};
            ListAll();
        }
        for (const auto& [module, seen] : std::vector(suspects)) {
            ListAlone(module, seen);
        }
        std::vector<Item> items;
        for (const Item& plugin : plugins) {
            std::ranges::move(found[plugin.name], std::back_inserter(items));
        }
        return items;
    }

private:
    Job MakeJob(const Names& names) {
        Job job = session.MakeHelperJob(
            session.installation.GetExerciser(),
            {"list",
             session.WriteFile(session.NextFile("listing", "json"), requests.ToList(names))},
            Follower(Work::ListModules, names));
        job.wholeTime = session.options.itemTime * (names.size() + 1);
        job.keepOutput = true;
        return job;
    }

    /// False once all but the culprits were listed.
    bool ListAll() {
        std::string culprit;
        session.runs.RunAll({MakeJob(modules)}, [&](const Run& run) {
            culprit = run.job.follower.culprit;
            if (!culprit.empty()) {
                suspects.emplace_back(culprit, run.job.follower.attempts.at(culprit));
            } else {
                Take(run);
            }
        });
        std::erase(modules, culprit);
        return !culprit.empty();
    }

    void Take(const Run& run) {
        try {
            const Json json = Json::parse(run.output);
            for (const auto& [module, entries] : json.at("modules").items()) {
                for (const Json& entry : entries) {
                    Add(module, entry.at("id").get<std::string>());
                }
            }
            for (const auto& [module, text] : json.at("failed").items()) {
                suspects.emplace_back(module, MakeFailure(text.get<std::string>()));
            }
            const auto files = json.at("files").get<Names>();
            session.result.moduleFiles.insert(files.begin(), files.end());
        } catch (const Json::exception& error) {
            throw PhaseFailure(std::string("The plugins in the modules can't be listed: ") +
                               error.what() + "; " + run.lastWords);
        }
    }

    void Add(const std::string& module, const std::string& id) {
        const auto plugin = std::ranges::find(plugins, module, &Item::name);
        if (plugin == plugins.end()) {
            return;
        }
        Item item = MakeItem(*plugin);
        item.id = id;
        item.name += id.empty() ? "" : "/" + id;
        const auto& before = known[module];
        const auto same = std::ranges::find(before, item.name, &Item::name);
        found[module].push_back(same == before.end() ? item : *same);
    }

    Item MakeItem(const Item& plugin) const {
        Item item;
        item.kind = ItemKind::Exercise;
        item.name = item.plugin = plugin.name;
        item.interface = plugin.interface;
        item.depth = session.options.depth;
        return item;
    }

    /// The trial of a module: where that can be listed by itself, the company was the reason.
    void ListAlone(const std::string& module, const Attempt& seen) {
        const std::size_t before = suspects.size();
        Job job = MakeJob({module});
        job.quiet = NeedsQuiet(seen);
        std::optional<Attempt> alone;
        session.runs.RunAll({job}, [&](const Run& run) {
            const Follower& follower = run.job.follower;
            if (!follower.culprit.empty()) {
                alone = follower.attempts.at(module);
            } else if (Take(run); suspects.size() > before) {
                alone = suspects.back().second;
            }
        });
        suspects.resize(before);
        if (alone) {
            Item item = MakeItem(*std::ranges::find(plugins, module, &Item::name));
            Judge(item, seen, *alone);
            item.repro = ToCommand(job);
            found[module] = {item};
        }
    }

    Session& session;
    const ExerciseRequests& requests;
    const std::vector<Item>& plugins;
    Names modules, last;
    std::unordered_map<std::string, std::vector<Item>> known, found;  // by module
    std::vector<std::pair<std::string, Attempt>> suspects;            // modules
};

}  // namespace

ExerciseRequests::ExerciseRequests(const Session& session, const std::vector<Item>& plugins)
    : session(session) {
    for (const Item& plugin : plugins) {
        byName[plugin.name] = &plugin;
    }
}

std::string ExerciseRequests::ToList(const Names& modules) const {
    Json list = Json::array();
    for (const std::string& name : modules) {
        const Item& plugin = *byName.at(name);
        const auto bundle = Installations::GetBundle(session.installation.GetModule(name),
                                                     ParseInterface(plugin.interface));
        list.push_back({{"name", name},
                        {"interface", plugin.interface},
                        {"path", plugin.file->path},
                        {"bundle", bundle.native()}});
    }
    return Json{{"depth", session.options.depth}, {"modules", list}, {"exercises", Json::array()}}
               .dump(1, ' ', false, Json::error_handler_t::replace) +
           "\n";
}

std::string ExerciseRequests::ToUse(const std::vector<const Item*>& exercises) const {
    Names modules;
    Json list = Json::array();
    for (const Item* item : exercises) {
        if (modules.empty() || modules.back() != item->plugin) {
            modules.push_back(item->plugin);
        }
        list.push_back({{"module", item->plugin}, {"id", item->id}});
    }
    Json request = Json::parse(ToList(modules));
    request["exercises"] = list;
    return request.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

void ListExercises(Session& session, const ExerciseRequests& requests,
                   const std::vector<Item>& plugins, const Carried& carried,
                   std::vector<Item>& exercises) {
    exercises = Lister(session, requests, plugins, carried).List();
}

}  // namespace Tarnex::Parent
