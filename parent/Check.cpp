#include "parent/Check.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <functional>
#include <iterator>
#include <unordered_map>

#include "parent/ExerciseListing.h"
#include "parent/Phases.h"

namespace Tarnex::Parent {
namespace {

bool IsWanted(const Names& wanted, const std::string& name) {
    return wanted.empty() || Contains(wanted, name);
}

CheckOptions Resolve(CheckOptions options) {
    const Installations::Installation installation(options.application);
    options.application = installation.GetDirectory();
    if (!boost::filesystem::exists(installation.GetProgram())) {
        throw Exception("There is no Assayer in " + options.application.native());
    }
    return options;
}

class Checking {
public:
    Checking(const CheckOptions& wanted, std::vector<Item> items, Carried known,
             CheckListener& listener)
        : options(Resolve(wanted)),
          session(options, listener, result),
          carried(std::move(known)),
          plugins(std::move(items)) {}

    CheckResult Check() {
        FindInterfaces(plugins);
        session.Spare(plugins);
        try {
            RunPhase([this] { CheckPlugins(session, plugins); });
            if (options.plugins) {
                RunPhase([this] { CheckExercises(session, plugins, carried, exercises); });
            }
            if (options.codecs) {
                RunPhase([this] { CheckAllCodecs(); });
            }
        } catch (const std::exception& failure) {
            AddProblem(failure.what());
        }
        Complete();
        return std::move(result);
    }

private:
    void RunPhase(const std::function<void()>& phase) {
        try {
            phase();
        } catch (const PhaseFailure& failure) {
            AddProblem(failure.what());
        }
    }

    void CheckAllCodecs() {
        Names leftOut;
        if (carried.allCodecs) {
            codecs = std::move(carried.codecs);
        } else {
            const Listing listing = ListCodecs(session, plugins, leftOut);
            codecs = ToItems(listing);
            NoteUnknown(listing);
            TakeCarried();
        }
        session.Spare(codecs);
        std::erase_if(codecs, [this](const Item& item) { return !options.Wants(item); });
        TellPlugins([](const Item& plugin) { return !IsOfCore(plugin.factory); });
        for (const Item& item : codecs) {
            if (item.verdict != Verdict::NotReached) {
                session.Tell(item);
            }
        }
        CheckCodecs(session, leftOut, plugins, codecs);
    }

    void TakeCarried() {
        std::unordered_map<std::string, const Item*> known;
        for (const Item& item : carried.codecs) {
            known[item.name] = &item;
        }
        for (Item& item : codecs) {
            if (const auto same = known.find(item.name); same != known.end()) {
                item = *same->second;
            }
        }
    }

    /// A name that nobody offers would else be passed over without a word.
    void NoteUnknown(const Listing& listing) {
        std::set<std::string> ids;
        for (const Item& item : codecs) {
            ids.insert(item.codec);
        }
        for (const std::string& id : options.codecIds) {
            if (!ids.contains(id)) {
                AddProblem("There is no codec \"" + id + "\" here");
            }
        }
        for (const std::string& name : options.implementations) {
            if (!listing.codecs.contains(name)) {
                AddProblem("There is no implementation \"" + name + "\" here");
            }
        }
    }

    /// Also in a check of codecs alone a plugin counts that the media core has to start without.
    bool IsPart(const Item& plugin) const {
        return options.Wants(plugin) || !plugin.phase.empty() || !plugin.spoils.empty() ||
               (options.codecs && IsBad(plugin.verdict));
    }

    void TellPlugins(const std::function<bool(const Item&)>& which) {
        for (const Item& item : plugins) {
            if (IsPart(item) && which(item)) {
                session.Tell(item);
            }
        }
    }

    void Complete() {
        TellPlugins([](const Item&) { return true; });
        std::ranges::copy_if(plugins, std::back_inserter(result.items),
                             [this](const Item& item) { return IsPart(item); });
        for (const std::vector<Item>* items : {&exercises, &codecs}) {
            for (const Item& item : *items) {
                session.Tell(item);
                result.items.push_back(item);
            }
        }
        NoteStrays();
        if (std::ranges::count(result.items, Verdict::NotReached, &Item::verdict) != 0) {
            AddProblem("Not all items were reached");
        }
        result.complete = result.problem.empty();
    }

    void NoteStrays() {
        const Strays& strays = session.runs.strays;
        for (const std::string& name : strays.names) {
            session.Note("A record about " + name +
                         " at a wrong place was ignored: a module wrote it");
        }
        if (strays.more > 0) {
            session.Note(fmt::format("{} more such records were ignored", strays.more));
        }
    }

    void AddProblem(const std::string& text) {
        if (result.problem.empty()) {
            result.problem = text;
        } else if (result.problem != text) {
            session.Note(text);
        }
    }

    const CheckOptions options;
    CheckResult result;
    Session session;
    Carried carried;
    std::vector<Item> plugins, exercises, codecs;
};

}  // namespace

std::vector<Item> ToItems(const Listing& listing) {
    std::vector<Item> items;
    for (const auto& [implementation, coders] : listing.codecs) {
        for (const auto& [coder, codecs] : coders) {
            for (const std::string& codec : codecs) {
                Item& item = items.emplace_back();
                item.kind = ItemKind::Codec;
                item.name = fmt::format("{}.{}.{}", coder, implementation, codec);
                item.coder = coder;
                item.implementation = implementation;
                item.codec = codec;
            }
        }
    }
    std::ranges::sort(items, {}, &Item::name);
    return items;
}

bool CheckOptions::Wants(const Item& item) const {
    const std::string& plugin = item.kind == ItemKind::Exercise ? item.plugin : item.name;
    if (Contains(skip, item.name) || Contains(skip, plugin)) {
        return false;
    }
    return item.kind == ItemKind::Codec
               ? IsWanted(implementations, item.implementation) && IsWanted(codecIds, item.codec)
               : plugins && IsWanted(pluginNames, plugin);
}

std::vector<Item> ListPlugins(const boost::filesystem::path& application) {
    const Installations::Installation installation(application);
    std::vector<Item> items;
    std::set<std::string> known;
    for (const auto& [name, factory] : installation.ReadOrder()) {
        if (!known.insert(name).second) {
            continue;
        }
        boost::system::error_code error;
        const auto file = boost::filesystem::canonical(installation.GetModule(name), error);
        Item& item = items.emplace_back();
        item.name = name;
        item.factory = factory;
        item.verdict = error ? Verdict::Missing : Verdict::NotReached;
        item.file = error ? std::nullopt : std::optional(FileFacts{file.native(), 0, {}, {}});
    }
    return items;
}

void FindInterfaces(std::vector<Item>& plugins) {
    for (Item& plugin : plugins) {
        if (plugin.interface.empty() && plugin.file) {
            const auto interface = Installations::FindInterface(plugin.file->path, plugin.factory);
            plugin.interface = Installations::TraitsOf(interface).name;
        }
    }
}

CheckResult RunCheck(const CheckOptions& options, std::vector<Item> plugins, Carried carried,
                     CheckListener& listener) {
    return Checking(options, std::move(plugins), std::move(carried), listener).Check();
}

std::optional<Listing> AskForCodecs(const CheckOptions& options, CheckListener& listener) {
    const CheckOptions resolved = Resolve(options);
    CheckResult result;
    Session session(resolved, listener, result);
    return AskForCodecs(session);
}

Listing ListCodecs(const CheckOptions& options, std::vector<Item> plugins,
                   CheckListener& listener) {
    const CheckOptions resolved = Resolve(options);
    CheckResult result;
    Session session(resolved, listener, result);
    Names leftOut;
    return ListCodecs(session, plugins, leftOut);
}

std::vector<Item> ListExercises(const CheckOptions& options, std::vector<Item> plugins,
                                CheckListener& listener) {
    const CheckOptions resolved = Resolve(options);
    CheckResult result;
    Session session(resolved, listener, result);
    for (Item& plugin : plugins) {
        // Nobody checked it yet; one that is bad shows that when it is listed.
        plugin.verdict = plugin.file ? Verdict::Good : plugin.verdict;
    }
    const ExerciseRequests requests(session, plugins);
    std::vector<Item> exercises;
    ListExercises(session, requests, plugins, {}, exercises);
    return exercises;
}

}  // namespace Tarnex::Parent
