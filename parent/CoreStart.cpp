#include "parent/CoreStart.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "parent/Minimize.h"

namespace Tarnex::Parent {
namespace {

/// How the helper begins the text of what it was told as an exception.
constexpr std::string_view HELPER_MARK = "assayer-list: ";

Names Without(const Names& names, const Names& others) {
    Names rest;
    std::copy_if(names.begin(), names.end(), std::back_inserter(rest),
                 [&](const std::string& name) { return !Contains(others, name); });
    return rest;
}

Names HelperArguments(const Names& without) {
    return without.empty() ? Names() : Names{"--without", JoinOrNothing(without)};
}

Attempt ToAttempt(const Run& run) {
    Attempt attempt = FromEnd(run.Facts().end);
    const std::size_t mark = run.LastWords().rfind(HELPER_MARK);
    if (attempt.reason == "1" && mark != std::string::npos) {
        attempt = MakeFailure(run.LastWords().substr(mark + HELPER_MARK.size()));
    }
    attempt.seconds = run.Facts().seconds;
    return attempt;
}

Listing Parse(const std::string& text) {
    try {
        const auto json = nlohmann::json::parse(text);
        return {json.at("codecs").get<decltype(Listing::codecs)>(), json.at("files").get<Names>()};
    } catch (const nlohmann::json::exception& exception) {
        throw PhaseFailure(std::string("assayer-list gave no list of codecs: ") + exception.what());
    }
}

}  // namespace

CoreStart::CoreStart(Session& session, Runs& runs, const std::vector<PluginPlace>& order,
                     std::vector<Item>& plugins)
    : session(session), runs(runs), plugins(plugins) {
    for (const Item& item : plugins) {
        if (item.verdict == Verdict::Failed || EndsRuns(item.verdict)) {
            leftOut.push_back(item.name);
        }
    }
    candidates = Without(CorePlugins(order), leftOut);
}

Listing CoreStart::List() {
    Start start = Try(leftOut);
    if (!start.works) {
        FindCulprits(start);
        start = Try(leftOut);
    }
    if (!start.works) {
        throw PhaseFailure("The media core doesn't start: " + start.attempt.reason);
    }
    return Parse(start.output);
}

CoreStart::Start CoreStart::Try(Names without) {
    Start start{};
    Job job;
    job.arguments = HelperArguments(without);
    job.helper = true;
    job.done = [&](const Run& run) {
        const auto* exit = std::get_if<ExitStatus>(&run.Facts().end);
        start = {exit != nullptr && exit->status == 0, ToAttempt(run), run.Output()};
    };
    runs.RunNow(std::move(job));
    return start;
}

CoreStart::Start CoreStart::TryOnly(const Names& names) {
    Names without = Without(candidates, names);
    without.insert(without.end(), leftOut.begin(), leftOut.end());
    return Try(without);
}

/// The fewest plugins without which the core starts: there may be more than one.
void CoreStart::FindCulprits(const Start& first) {
    const auto helps = [&](const Names& names) {
        return TryOnly(Without(candidates, names)).works;
    };
    if (!helps(candidates)) {
        throw PhaseFailure("The media core doesn't start, even without plugins: " +
                           first.attempt.reason);
    }
    const Names culprits = Minimize(candidates, helps, [] { return true; });
    for (const std::string& name : culprits) {
        const bool single = culprits.size() == 1;
        const Names others = Without(culprits, {name});
        Blame(name, single ? first.attempt : TryOnly(Without(candidates, others)).attempt);
    }
    leftOut.insert(leftOut.end(), culprits.begin(), culprits.end());
}

/// By the end that the start takes with it alone.
void CoreStart::Blame(const std::string& name, const Attempt& seen) {
    const auto item = std::find_if(plugins.begin(), plugins.end(),
                                   [&](const Item& plugin) { return plugin.name == name; });
    Judge(*item, seen, TryOnly({name}).attempt);
    item->phase = "core start";
    item->repro = session.result.runs.back().arguments;
    item->repro.front() = session.Helper();
}

}  // namespace Tarnex::Parent
