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

/// What the core loads when it starts.
bool IsOfCore(const std::string& factory) {
    return factory == Core::CODEC_FACTORY || factory == Core::MUXER_FACTORY ||
           factory == Core::PARSER_FACTORY;
}

/// An exception's text is the helper's last words, after its name.
Attempt ToAttempt(const Run& run) {
    const std::string mark = std::string(HELPER) + ": ";
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
        return Listing{json.at("codecs").get<decltype(Listing::codecs)>(),
                       json.at("files").get<Names>()};
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
        Names arguments;
    };

    Start TryWith(const Names& names) {
        Names without = Without(candidates, names);
        without.insert(without.end(), leftOut.begin(), leftOut.end());
        Job job;
        job.helper = true;
        if (!without.empty()) {
            job.arguments = {"--without", Join(without)};
        }
        Start start;
        session.RunAll({job}, [&](const Run& run) {
            start = {run.end.status == 0 ? Parse(run.output) : std::nullopt, {}, job.arguments};
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
        item.repro = ToRepro(session.options, alone.arguments);
        item.repro.front() = (session.options.application / HELPER).native();
    }

    Session& session;
    std::vector<Item>& plugins;
    Names& leftOut;
    Names candidates;
};

}  // namespace

Listing ListCodecs(Session& session, std::vector<Item>& plugins, Names& leftOut) {
    for (const Item& item : plugins) {
        if (item.verdict == Verdict::Failed || EndsRuns(item.verdict)) {
            leftOut.push_back(item.name);
        }
    }
    return CoreStart(session, plugins, leftOut).List();
}

}  // namespace Tarnex::Parent
