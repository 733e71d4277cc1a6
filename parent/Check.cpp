#include "parent/Check.h"

#include <algorithm>
#include <set>

#include "core/support/Exception.h"
#include "parent/CodecPhase.h"
#include "parent/CoreStart.h"
#include "parent/PluginPhase.h"

namespace Tarnex::Parent {
namespace {

/// Throws if a name isn't among those that there are.
void RequireKnown(const Names& names, const std::set<std::string>& known, const std::string& what) {
    for (const std::string& name : names) {
        if (!known.contains(name)) {
            throw UnknownName("There is no " + what + " \"" + name +
                              "\" here. There are: " + JoinOrNothing({known.begin(), known.end()}));
        }
    }
}

bool IsWanted(const Names& wanted, const std::string& name) {
    return wanted.empty() || Contains(wanted, name);
}

Item MakeCodec(const std::string& coder, const std::string& implementation,
               const std::string& codec) {
    Item item;
    item.kind = ItemKind::Codec;
    item.name = coder + "." + implementation + "." + codec;
    item.coder = coder;
    item.implementation = implementation;
    item.codec = codec;
    return item;
}

class Checking {
public:
    Checking(const CheckOptions& options, std::vector<Item> items, CheckListener& listener)
        : session(options, listener, result), runs(session), plugins(std::move(items)) {
        if (!std::filesystem::exists(session.Program())) {
            throw Exception("There is no Assayer in " + session.application.native());
        }
        order = ReadPluginOrder(session.application);
        ChoosePlugins();
    }

    CheckResult Check() {
        try {
            CheckPhases();
        } catch (const CheckFailure& failure) {
            AddProblem(failure.what());
        }
        Complete();
        return std::move(result);
    }

private:
    void ChoosePlugins() {
        std::set<std::string> known;
        for (const Item& item : plugins) {
            known.insert(item.name);
        }
        RequireKnown(session.options.pluginNames, known, "plugin");
        for (const std::string& name : known) {
            if (session.options.plugins && IsWanted(session.options.pluginNames, name)) {
                chosen.insert(name);
            }
        }
    }

    void CheckPhases() {
        try {
            PluginPhase(session, runs, order, chosen, plugins).Check();
        } catch (const PhaseFailure& failure) {
            AddProblem(failure.what());
        }
        try {
            if (session.options.codecs) {
                CheckCodecs();
            }
        } catch (const PhaseFailure& failure) {
            AddProblem(failure.what());
        }
    }

    void CheckCodecs() {
        CoreStart core(session, runs, order, plugins);
        const Listing listing = core.List();
        ChooseCodecs(listing);
        session.listener.OnListing(listing, codecs);
        TellPlugins();
        CodecPhase(session, runs, core.LeftOut(), codecs).Check();
    }

    void ChooseCodecs(const Listing& listing) {
        const CheckOptions& options = session.options;
        std::set<std::string> implementations, ids;
        for (const auto& [implementation, coders] : listing.codecs) {
            implementations.insert(implementation);
            for (const auto& [coder, codecIds] : coders) {
                ids.insert(codecIds.begin(), codecIds.end());
            }
        }
        RequireKnown(options.implementations, implementations, "implementation");
        RequireKnown(options.codecIds, ids, "codec");
        for (const auto& [implementation, coders] : listing.codecs) {
            if (IsWanted(options.implementations, implementation)) {
                AddCodecs(implementation, coders);
            }
        }
        std::sort(codecs.begin(), codecs.end(),
                  [](const Item& left, const Item& right) { return left.name < right.name; });
    }

    void AddCodecs(const std::string& implementation, const std::map<std::string, Names>& coders) {
        for (const auto& [coder, ids] : coders) {
            const std::set<std::string> once(ids.begin(), ids.end());
            for (const std::string& id : once) {
                if (IsWanted(session.options.codecIds, id)) {
                    codecs.push_back(MakeCodec(coder, implementation, id));
                }
            }
        }
    }

    /// Also in a check of codecs alone a plugin counts that the media core has to start without.
    bool IsPart(const Item& plugin) const {
        return chosen.contains(plugin.name) || !plugin.phase.empty() ||
               (plugin.carried && IsBad(plugin.verdict));
    }

    void TellPlugins() {
        for (const Item& item : plugins) {
            if (IsPart(item)) {
                session.Tell(item);
            }
        }
    }

    void Complete() {
        TellPlugins();
        for (const Item& item : codecs) {
            session.Tell(item);
        }
        std::copy_if(plugins.begin(), plugins.end(), std::back_inserter(result.items),
                     [this](const Item& item) { return IsPart(item); });
        result.items.insert(result.items.end(), codecs.begin(), codecs.end());
        session.RemoveUnusedLists(result.items);
        if (std::any_of(result.items.begin(), result.items.end(),
                        [](const Item& item) { return item.verdict == Verdict::NotReached; })) {
            AddProblem("Not all items were reached");
        }
        result.complete = result.problem.empty();
    }

    void AddProblem(const std::string& text) {
        if (result.problem.empty()) {
            result.problem = text;
        }
    }

    CheckResult result;
    Session session;
    Runs runs;
    std::vector<PluginPlace> order;
    std::vector<Item> plugins;
    std::set<std::string> chosen;
    std::vector<Item> codecs;
};

}  // namespace

CheckResult RunCheck(const CheckOptions& options, std::vector<Item> plugins,
                     CheckListener& listener) {
    return Checking(options, std::move(plugins), listener).Check();
}

}  // namespace Tarnex::Parent
