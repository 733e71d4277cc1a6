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

std::set<std::string> GetAll(const std::vector<Item>& items, std::string Item::*part) {
    std::set<std::string> values;
    std::ranges::transform(items, std::inserter(values, values.end()), part);
    return values;
}

/// By name.
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

class Checking {
public:
    Checking(const CheckOptions& wanted, std::vector<Item> items, CheckListener& listener)
        : options(Resolve(wanted)), session(options, listener, result), plugins(std::move(items)) {
        RequireKnown(options.pluginNames, GetAll(plugins, &Item::name), "plugin");
    }

    CheckResult Check() {
        try {
            RunPhase([this] { CheckPlugins(session, plugins); });
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
        codecs = ToItems(listing);
        std::set<std::string> implementations;
        for (const auto& [implementation, coders] : listing.codecs) {
            implementations.insert(implementation);
        }
        RequireKnown(options.implementations, implementations, "implementation");
        RequireKnown(options.codecIds, GetAll(codecs, &Item::codec), "codec");
        std::erase_if(codecs, [this](const Item& item) { return !options.Wants(item); });
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
        return options.Wants(plugin) || !plugin.phase.empty() ||
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
    std::vector<Item> codecs;
};

}  // namespace

bool CheckOptions::Wants(const Item& item) const {
    return item.kind == ItemKind::Plugin
               ? plugins && IsWanted(pluginNames, item.name)
               : IsWanted(implementations, item.implementation) && IsWanted(codecIds, item.codec);
}

CheckResult RunCheck(const CheckOptions& options, std::vector<Item> plugins,
                     CheckListener& listener) {
    return Checking(options, std::move(plugins), listener).Check();
}

}  // namespace Tarnex::Parent
