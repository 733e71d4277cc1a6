#include "parent/Testing.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Tarnex::Parent {
namespace {

/// A start costs a tenth of its run at most, but for the last runs, which share what is left.
constexpr double WORK_PER_START = 10;
/// Tests, until it is known what a start and a test take here.
constexpr double FIRST_BATCHES = 16;
/// The first batches, one for each job, hold about half of all tests. More batches would take
/// longer in all, because each run takes memory of its own into use.
constexpr double FINENESS = 1.5;
/// What failed in company goes again so often before it counts as good.
constexpr std::size_t LOOKS = 3;
/// As many at least go by themselves the last time: the others in their process may be the reason.
constexpr std::size_t MOST_ALONE = 100;
/// Bytes in one argument of a process; Linux takes 128 KiB.
constexpr std::size_t LONGEST_ARGUMENT = 100'000;

bool IsFailure(const Attempt& attempt) {
    return attempt.verdict == Verdict::Failed;
}

}  // namespace

Testing::Testing(Session& session, TestKind& kind, std::vector<Item>& items)
    : session(session), kind(kind) {
    for (Item& item : items) {
        byName[item.name] = &item;
    }
}

void Testing::Check(std::deque<Names> wanted) {
    groups = std::move(wanted);
    Names last;
    const auto isLast = [this](const std::string& test) { return session.IsLast(test); };
    for (Names& group : groups) {
        std::ranges::copy_if(group, std::back_inserter(last), isLast);
        std::erase_if(group, isLast);
        left += group.size();
    }
    std::erase_if(groups, [](const Names& group) { return group.empty(); });
    session.runs.progress.done = 0;
    session.runs.progress.total = left + last.size();
    session.runs.Drain([this] { return NextBatch(); }, [this](const Run& run) { TakeBatch(run); });
    LookAtBad();
    for (const std::string& test : last) {
        session.runs.RunAll({kind.MakeJob({test})}, [this](const Run& run) { TakeBatch(run); });
    }
    LookAtBad();
}

void Testing::LookAtBad() {
    const std::string_view phase = std::exchange(session.runs.progress.phase, "trials");
    TryAlone();
    LookAgain();
    session.runs.progress.phase = phase;
}

/// What a run didn't come to, else the next tests.
std::optional<Job> Testing::NextBatch() {
    Names tests;
    if (!rests.empty()) {
        tests = std::move(rests.front());
        rests.pop_front();
    } else {
        tests = Deal();
    }
    return tests.empty() ? std::nullopt : std::optional(kind.MakeJob(tests));
}

Names Testing::Deal() {
    const std::size_t most = CountWorthwhile();
    Names tests;
    std::size_t bytes = 0;
    while (!groups.empty() && tests.size() < most) {
        bytes += kind.CountBytes(groups.front());
        if (bytes > LONGEST_ARGUMENT && !tests.empty()) {
            break;
        }
        std::ranges::move(groups.front(), std::back_inserter(tests));
        groups.pop_front();
    }
    left -= tests.size();
    return tests;
}

/// Large batches first, smaller towards the end, so that all runs end at about the same time.
std::size_t Testing::CountWorthwhile() const {
    const double tests = static_cast<double>(left);
    const double jobs = session.options.jobs;
    const double worthwhile =
        secondsOfTest > 0 ? WORK_PER_START * startSeconds / secondsOfTest : FIRST_BATCHES;
    const double share = jobs == 1 ? tests : tests / (FINENESS * jobs);
    return static_cast<std::size_t>(std::ceil(std::max(share, std::min(worthwhile, tests / jobs))));
}

void Testing::TakeBatch(const Run& run) {
    const Follower& follower = run.job.follower;
    if (EndsBadly(run)) {
        testsOfBadEnd = follower.begun;
    }
    if (follower.unwatched && follower.begun.size() > 1) {
        Halve(follower);
    } else {
        TakeOutcomes(run);
    }
    Measure(run);
    GoOn(follower, rests);
}

/// Who loses a keeper is found by halves: it is noticed late, and so the open test may be innocent.
void Testing::Halve(const Follower& follower) {
    const Names& begun = follower.begun;
    const auto middle = begun.begin() + static_cast<std::ptrdiff_t>(begun.size() / 2);
    rests.emplace_back(begun.begin(), middle);
    rests.emplace_back(middle, begun.end());
}

void Testing::TakeOutcomes(const Run& run) {
    const Follower& follower = run.job.follower;
    for (const auto& [name, seen] : follower.attempts) {
        const Attempt attempt = kind.Assess(Find(name), seen);
        if (!IsBad(attempt.verdict)) {
            Parent::Judge(Find(name), attempt, attempt);
            Decide(Find(name));
            continue;
        }
        batchOf[name] = ToCommand(run.job);
        const bool alone = name == follower.culprit || kind.TriesFailuresAlone();
        if (alone) {
            culprits.push_back({name, attempt});
        } else {
            failures[name] = attempt;
        }
    }
}

void Testing::Measure(const Run& run) {
    const Follower& follower = run.job.follower;
    if (follower.finished && !follower.begun.empty()) {
        startSeconds = run.startSeconds;
        secondsOfTest = (run.seconds - startSeconds) / static_cast<double>(follower.begun.size());
    }
}

/// With what the run didn't come to.
void Testing::GoOn(const Follower& follower, std::deque<Names>& queue) {
    const Names rest = follower.Untouched();
    if (!rest.empty() && follower.begun.empty()) {
        session.Note("A run didn't offer what was listed: " + Join(rest));
    } else if (!rest.empty()) {
        queue.push_front(rest);
    }
}

void Testing::TryAlone() {
    const auto decide = [this](Suspect& suspect) {
        Item& item = Find(suspect.name);
        if (suspect.alone) {
            kind.Judge(item, suspect);
            item.repro = item.verdict == Verdict::Unsteady ? batchOf[item.name]
                         : IsBad(item.verdict)             ? suspect.trial
                                                           : Names();
        }
        Decide(item);
    };
    std::vector<Suspect> suspects = std::exchange(culprits, {});
    TrySuspects(
        session.runs, suspects,
        [this](const std::string& test) {
            Job job = kind.MakeTrial(test);
            job.quiet = session.IsLast(test);
            return job;
        },
        decide);
}

/// What failed goes again with nothing beside its run: a device may serve few at a time. The last
/// time each has a process of its own, unless there are so many that their cause is the same.
void Testing::LookAgain() {
    for (std::size_t look = 1; look <= LOOKS; ++look) {
        Names tests;
        for (const auto& [name, failure] : failures) {
            if (Find(name).verdict == Verdict::NotReached) {
                tests.push_back(name);
            }
        }
        const bool isAlone = look == LOOKS && tests.size() <= MOST_ALONE;
        LookOnce(tests, isAlone ? 1 : tests.size());
    }
}

/// How many of the first ones fit into one argument.
std::size_t Testing::CountThatFit(const Names& tests) const {
    std::size_t count = 0;
    for (std::size_t bytes = 0; count < tests.size(); ++count) {
        bytes += kind.CountBytes({tests[count]});
        if (bytes > LONGEST_ARGUMENT && count > 0) {
            break;
        }
    }
    return count;
}

void Testing::LookOnce(Names tests, std::size_t most) {
    std::deque<Names> queue;
    while (!tests.empty()) {
        const auto end =
            tests.begin() + static_cast<std::ptrdiff_t>(std::min(most, CountThatFit(tests)));
        queue.emplace_back(tests.begin(), end);
        tests.erase(tests.begin(), end);
    }
    while (!queue.empty()) {
        Job job = kind.MakeJob(std::exchange(queue.front(), {}));
        queue.pop_front();
        job.quiet = true;
        session.runs.RunAll({std::move(job)}, [&](const Run& run) {
            for (const auto& [name, attempt] : run.job.follower.attempts) {
                TakeLook(name, attempt);
            }
            GoOn(run.job.follower, queue);
        });
    }
}

/// All looks alike decide; the first that isn't makes the test unsteady.
void Testing::TakeLook(const std::string& name, const Attempt& attempt) {
    std::vector<Attempt>& seen = looks[name];
    seen.push_back(attempt);
    const Attempt& first = failures.at(name);
    Item& item = Find(name);
    const bool mixed = !IsSame(seen.front(), attempt) || EndsRuns(attempt.verdict);
    if (!mixed && seen.size() < LOOKS) {
        return;
    }
    Parent::Judge(item, mixed ? first : attempt, mixed ? Attempt() : attempt);
    item.seconds = attempt.seconds;
    item.repro = mixed                ? batchOf[name]
                 : IsFailure(attempt) ? ToCommand(kind.MakeTrial(name))
                                      : Names();
    if (!IsBad(item.verdict)) {
        item.remarks.push_back("failed beside other tests: " + first.reason);
    }
    Decide(item);
}

void Testing::Decide(Item& item) {
    ++session.runs.progress.done;
    if (kind.IsFinal(item)) {
        session.Tell(item);
    }
}

}  // namespace Tarnex::Parent
