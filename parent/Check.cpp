#include "parent/Check.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <boost/filesystem.hpp>

#include "parent/Phases.h"

namespace Tarnex::Parent {
namespace {

/// Throws if a name isn't among those that there are.
void RequireKnown(const Names& names, const std::set<std::string>& known, const std::string& what) {
    for (const std::string& name : names) {
        if (!known.contains(name)) {
            throw UnknownName(fmt::format("There is no {} \"{}\" here. There are: {}", what, name,
                                          fmt::join(known, ",")));
        }
    }
}

bool IsWanted(const Names& wanted, const std::string& name) {
    return wanted.empty() || Contains(wanted, name);
}

CheckOptions Resolve(CheckOptions options) {
    options.application = boost::filesystem::absolute(options.application);
    if (!boost::filesystem::exists(options.application / PROGRAM)) {
        throw Exception("There is no Assayer in " + options.application.native());
    }
    return options;
}

/// The wanted ones, by name.
std::vector<Item> ChooseCodecs(const CheckOptions& options, const Listing& listing) {
    std::map<std::string, Item> items;
    std::set<std::string> implementations, ids;
    for (const auto& [implementation, coders] : listing.codecs) {
        implementations.insert(implementation);
        for (const auto& [coder, codecs] : coders) {
            ids.insert(codecs.begin(), codecs.end());
            for (const std::string& codec : codecs) {
                if (IsWanted(options.implementations, implementation) &&
                    IsWanted(options.codecIds, codec)) {
                    const std::string name = fmt::format("{}.{}.{}", coder, implementation, codec);
                    Item& item = items[name];
                    item.kind = ItemKind::Codec;
                    item.name = name;
                    item.coder = coder;
                    item.implementation = implementation;
                    item.codec = codec;
                }
            }
        }
    }
    RequireKnown(options.implementations, implementations, "implementation");
    RequireKnown(options.codecIds, ids, "codec");
    std::vector<Item> chosen;
    chosen.reserve(items.size());
    for (auto& [name, item] : items) {
        chosen.push_back(std::move(item));
    }
    return chosen;
}

class Checking {
public:
    Checking(const CheckOptions& wanted, std::vector<Item> items, CheckListener& listener)
        : options(Resolve(wanted)), session(options, listener, result), plugins(std::move(items)) {
        std::set<std::string> known;
        for (const Item& item : plugins) {
            known.insert(item.name);
            if (options.plugins && IsWanted(options.pluginNames, item.name)) {
                chosen.insert(item.name);
            }
        }
        RequireKnown(options.pluginNames, known, "plugin");
    }

    CheckResult Check() {
        try {
            RunPhase([this] { CheckPlugins(session, chosen, plugins); });
            if (options.codecs) {
                RunPhase([this] { CheckAllCodecs(); });
            }
        } catch (const CheckFailure& failure) {
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
        const Listing listing = ListCodecs(session, plugins, leftOut);
        codecs = ChooseCodecs(options, listing);
        session.listener.OnListing(listing, codecs);
        TellPlugins();
        for (const Item& item : codecs) {
            if (item.verdict != Verdict::NotReached) {
                session.Tell(item);
            }
        }
        CheckCodecs(session, leftOut, codecs);
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
        std::ranges::copy_if(plugins, std::back_inserter(result.items),
                             [this](const Item& item) { return IsPart(item); });
        for (const Item& item : codecs) {
            session.Tell(item);
            result.items.push_back(item);
        }
        if (std::ranges::count(result.items, Verdict::NotReached, &Item::verdict) != 0) {
            AddProblem("Not all items were reached");
        }
        result.complete = result.problem.empty();
    }

    void AddProblem(const std::string& text) {
        if (result.problem.empty()) {
            result.problem = text;
        }
    }

    const CheckOptions options;
    CheckResult result;
    Session session;
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
