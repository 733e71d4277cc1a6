#include "parent/RunSpoilers.h"

#include "parent/Minimize.h"

namespace Tarnex::Parent {
namespace {

constexpr int MOST_RUNS = 64;
constexpr std::chrono::minutes MOST_TIME{2};
/// What only a crowd does, none of it does.
constexpr std::size_t MOST_SPOILERS = 3;

Names FindSpoilers(Session& session, const PluginRuns& loads, const Names& names,
                   const std::function<bool(const Run&)>& isSpoiled) {
    const auto spoil = [&](const Names& part) {
        bool spoiled = false;
        session.runs.RunAll({loads.MakeJob(part, "spoilers.list")},
                            [&](const Run& run) { spoiled = isSpoiled(run); });
        return spoiled;
    };
    if (names.empty() || !spoil(names)) {
        return {};
    }
    int left = MOST_RUNS;
    const Clock::time_point until = Clock::now() + MOST_TIME;
    Names spoilers = Minimize(names, spoil, [&] { return left-- > 0 && Clock::now() < until; });
    return spoilers.size() > MOST_SPOILERS ? Names() : spoilers;
}

}  // namespace

Names FindSpoilersOfEnd(Session& session, const PluginRuns& loads, const Names& names) {
    return FindSpoilers(session, loads, names, EndsBadly);
}

Names FindKeeperKillers(Session& session, const PluginRuns& loads, const Names& names) {
    return FindSpoilers(session, loads, names,
                        [](const Run& run) { return run.job.follower.unwatched; });
}

}  // namespace Tarnex::Parent
