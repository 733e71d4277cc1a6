#include <algorithm>
#include <nlohmann/json.hpp>

#include "core/media/PluginFactories.h"
#include "parent/Minimize.h"
#include "parent/Phases.h"

namespace Tarnex::Parent {
namespace {

Names Without(Names names, const Names& others) {
    std::erase_if(names, [&](const std::string& name) { return Contains(others, name); });
    return names;
}

/// An exception's text is the helper's last words, after its name.
Attempt ToAttempt(const Run& run) {
    if (run.job.follower.unwatched) {
        return KilledKeeper();
    }
    const std::string mark = "assayer-list: ";
    const std::size_t text = run.lastWords.rfind(mark);
    const bool told = FromEnd(run.end).reason == "1" && text != std::string::npos;
    Attempt attempt =
        told ? MakeFailure(run.lastWords.substr(text + mark.size())) : FromEnd(run.end);
    attempt.seconds = run.seconds;
    return attempt;
}

/// Modules may have written to standard output too.
std::optional<Listing> Parse(const std::string& output) {
    const std::size_t line = output.rfind("{\"codecs\"");
    try {
        const auto json = nlohmann::json::parse(output.substr(std::min(line, output.size())));
        return Listing{json.at("codecs").get<decltype(Listing::codecs)>()};
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

class CoreStart {
public:
    CoreStart(Session& session, std::vector<Item>& plugins, Names& leftOut)
        : session(session), plugins(plugins), leftOut(leftOut) {
        for (const auto& [name, factory] : session.order) {
            if (IsOfCore(factory) && !Contains(leftOut, name) && !Contains(candidates, name)) {
                candidates.push_back(name);
            }
        }
    }

    std::optional<Listing> Ask() { return TryWith(candidates, session.options.itemTime).listing; }

    Listing List() {
        Start start = TryWith(candidates);
        if (!start.listing) {
            FindCulprits(start);
            start = TryWith(candidates);
        }
        if (!start.listing) {
            Fail(start);
        }
        return *start.listing;
    }

private:
    struct Start {
        std::optional<Listing> listing;
        Attempt attempt;
        Names command;
    };

    Start TryWith(const Names& names) {
        return TryWith(names, session.options.itemTime * (1 + names.size()));
    }

    Start TryWith(const Names& names, std::chrono::seconds time) {
        Names arguments;
        if (const Names without = Without(candidates, names);
            !without.empty() || !leftOut.empty()) {
            Names all = leftOut;
            all.insert(all.end(), without.begin(), without.end());
            arguments = {"--without", Join(all)};
        }
        Job job = session.MakeHelperJob(session.installation.GetLister(), arguments, Follower());
        job.keepOutput = true;
        job.unnamed = names;
        job.startTime = job.wholeTime = time;
        Start start;
        session.runs.RunAll({job}, [&](const Run& run) {
            const bool isWhole = run.end.status == 0 && !run.job.follower.unwatched;
            start = {isWhole ? Parse(run.output) : std::nullopt, {}, ToCommand(job)};
            start.attempt = start.listing ? Attempt() : ToAttempt(run);
        });
        return start;
    }

    [[noreturn]] static void Fail(const Start& start) {
        throw PhaseFailure("The media core doesn't start, whatever module is left out: " +
                           start.attempt.reason);
    }

    /// The fewest plugins without which the core starts; there may be more than one.
    void FindCulprits(const Start& first) {
        const auto startsWithout = [&](const Names& names) {
            return TryWith(Without(candidates, names)).listing.has_value();
        };
        if (!startsWithout(candidates)) {
            Fail(first);
        }
        const Names culprits = Minimize(candidates, startsWithout, [] { return true; });
        const Names innocent = Without(candidates, culprits);
        for (const std::string& name : culprits) {
            Names company = innocent;
            company.push_back(name);
            Blame(name, culprits.size() == 1 ? first : TryWith(company), TryWith({name}));
        }
        candidates = innocent;
        leftOut.insert(leftOut.end(), culprits.begin(), culprits.end());
    }

    void Blame(const std::string& name, const Start& seen, const Start& alone) {
        Item& item = *std::ranges::find(plugins, name, &Item::name);
        Judge(item, seen.attempt, alone.attempt);
        item.phase = "core start";
        item.repro = alone.command;
    }

    Session& session;
    std::vector<Item>& plugins;
    Names& leftOut;
    Names candidates;
};

}  // namespace

std::optional<Listing> AskForCodecs(Session& session) {
    std::vector<Item> none;
    Names leftOut;
    return CoreStart(session, none, leftOut).Ask();
}

Listing ListCodecs(Session& session, std::vector<Item>& plugins, Names& leftOut) {
    for (const Item& item : plugins) {
        const bool isBad = item.verdict == Verdict::Failed || EndsRuns(item.verdict);
        const bool isOfCore = std::ranges::any_of(session.order, [&](const auto& place) {
            return place.name == item.name && IsOfCore(place.factory);
        });
        if (isBad && isOfCore) {
            leftOut.push_back(item.name);
        }
    }
    return CoreStart(session, plugins, leftOut).List();
}

}  // namespace Tarnex::Parent
