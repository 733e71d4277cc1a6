#include <algorithm>
#include <cmath>
#include <random>

#include "core/media/CodecFactory.h"
#include "core/media/Formats.h"
#include "parent/Phases.h"

namespace Tarnex::Parent {
namespace {

/// A start costs a tenth of its run at most, but for the last runs, which share what is left.
constexpr double WORK_PER_START = 10;
/// Codec ids, until it is known what a start and a test take here.
constexpr double FIRST_BATCHES = 8;
/// The first batches, one for each job, hold about half of all ids. More batches would take longer
/// in all, because each run takes memory of its own into use.
constexpr double FINENESS = 1.5;

bool IsDecoder(const Item& item) {
    return item.coder == "Decoder";
}

/// Whether the test of the decoder takes its input from this encoder.
bool MakesInput(const Item& encoder, const Item& decoder) {
    return !IsDecoder(encoder) && encoder.codec == decoder.codec &&
           (encoder.implementation == Proc::ImplNames::FFMPEG ||
            encoder.codec == Proc::IFormatCodecVideo::CODEC_ID_H265 ||
            encoder.codec == Proc::IFormatCodecAudio::CODEC_ID_AC3);
}

class CodecPhase {
public:
    CodecPhase(Session& session, const Names& leftOut, std::vector<Item>& codecs)
        : session(session), leftOut(leftOut), codecs(codecs) {
        std::set<std::string> known;
        for (Item& item : codecs) {
            byName[item.name] = &item;
            if (item.verdict == Verdict::NotReached && known.insert(item.codec).second) {
                ids.push_back(item.codec);
            }
        }
        // Neighbours in the alphabet cost alike; batches should. The same order in every check.
        std::shuffle(ids.begin(), ids.end(), std::minstd_rand());
    }

    void Check() {
        const auto open = std::ranges::count(codecs, Verdict::NotReached, &Item::verdict);
        session.progress = {"codecs", 0, static_cast<std::size_t>(open), {}, {}};
        session.Drain([this] { return NextBatch(); }, [this](const Run& run) { TakeBatch(run); });
        session.progress.phase = "trials";
        TryCulprits();
        LookAgain(failures);
        for (const std::string& name : culprits) {
            Item& item = *byName[name];
            item.input = IsDecoder(item) ? InputOf(item) : std::string();
            session.Tell(item);
        }
    }

private:
    /// What a run didn't come to, else all open tests of the next ids.
    std::optional<Job> NextBatch() {
        Names tests;
        if (!rests.empty()) {
            tests = std::move(rests.front());
            rests.pop_front();
        } else if (!ids.empty()) {
            const auto end = ids.begin() + static_cast<std::ptrdiff_t>(BatchSize());
            const std::set<std::string> dealt(ids.begin(), end);
            ids.erase(ids.begin(), end);
            for (const Item& item : codecs) {
                if (item.verdict == Verdict::NotReached && dealt.contains(item.codec)) {
                    tests.push_back(item.name);
                }
            }
        }
        return tests.empty() ? std::nullopt : std::optional(TestJob(tests));
    }

    /// Large ones first, smaller towards the end, so that all runs end at about the same time.
    std::size_t BatchSize() const {
        const double left = static_cast<double>(ids.size());
        const double jobs = session.options.jobs;
        const double worthwhile =
            secondsOfId > 0 ? WORK_PER_START * startSeconds / secondsOfId : FIRST_BATCHES;
        const double share = jobs == 1 ? left : left / (FINENESS * jobs);
        return static_cast<std::size_t>(
            std::ceil(std::max(share, std::min(worthwhile, left / jobs))));
    }

    /// A run that tests these and nothing else. The list of tests to leave out begins with a comma:
    /// else encoders alone in it would keep all decoders out.
    Job TestJob(const Names& tests) const {
        std::set<std::string> implementations, ids;
        for (const std::string& test : tests) {
            implementations.insert(byName.at(test)->implementation);
            ids.insert(byName.at(test)->codec);
        }
        std::string others;
        for (const Item& item : codecs) {
            if (ids.contains(item.codec) && implementations.contains(item.implementation) &&
                !Contains(tests, item.name)) {
                others += "," + item.name;
            }
        }
        return session.MakeJob(ItemKind::Codec, tests,
                               {{3, Join({implementations.begin(), implementations.end()})},
                                {4, Join({ids.begin(), ids.end()})},
                                {5, Join(leftOut)},
                                {9, others}});
    }

    void TakeBatch(const Run& run) {
        const Watch& watch = run.job.watch;
        for (const auto& [name, attempt] : watch.attempts) {
            if (!IsBad(attempt.verdict)) {
                Decide(name, attempt, attempt);
                continue;
            }
            seen[name] = attempt;
            batchOf[name] = run.job.arguments;
            (name == watch.culprit ? culprits : failures).push_back(name);
        }
        Measure(run);
        GoOn(watch, rests);
    }

    void Measure(const Run& run) {
        std::set<std::string> tested;
        for (const std::string& name : run.job.watch.begun) {
            tested.insert(byName.at(name)->codec);
        }
        if (run.job.watch.finished && !tested.empty()) {
            startSeconds = run.startSeconds;
            secondsOfId = (run.seconds - startSeconds) / static_cast<double>(tested.size());
        }
    }

    /// With what the run didn't come to.
    void GoOn(const Watch& watch, std::deque<Names>& queue) {
        const Names rest = watch.Untouched();
        if (watch.begun.empty()) {
            session.Note("A run didn't offer what was listed: " + Join(rest));
        } else if (!rest.empty()) {
            queue.push_front(rest);
        }
    }

    void TryCulprits() {
        std::vector<Job> jobs;
        for (const std::string& name : culprits) {
            jobs.push_back(TestJob({name}));
            jobs.back().alone = NeedsQuiet(seen[name]);
        }
        session.RunAll(std::move(jobs), [&](const Run& run) {
            for (const auto& [name, attempt] : run.job.watch.attempts) {
                Decide(name, seen[name], attempt);
            }
        });
    }

    /// At failures in one run with nothing beside it: a device may serve few at a time. The later
    /// outcome counts; who ends a run only now is unsteady.
    void LookAgain(const Names& tests) {
        std::deque<Names> queue;
        if (!tests.empty()) {
            queue.push_back(tests);
        }
        while (!queue.empty()) {
            const Watch watch = session.RunOne(TestJob(std::exchange(queue.front(), {})));
            queue.pop_front();
            for (const auto& [name, attempt] : watch.attempts) {
                Decide(name, EndsRuns(attempt.verdict) ? seen[name] : attempt, attempt);
            }
            GoOn(watch, queue);
        }
    }

    void Decide(const std::string& name, const Attempt& first, const Attempt& later) {
        Item& item = *byName[name];
        Judge(item, first, later);
        ++session.progress.done;
        if (item.verdict == Verdict::Unsteady) {
            item.repro = ToRepro(session.options, batchOf[name]);
        } else if (IsBad(item.verdict)) {
            item.repro = ToRepro(session.options, TestJob({name}).arguments);
        }
        // Encoders that make the input of a decoder's test may be found out later.
        if (!IsDecoder(item) || !Contains(culprits, name)) {
            session.Tell(item);
        }
    }

    /// The encoder test that ended a run and makes the decoder's input.
    std::string InputOf(const Item& decoder) const {
        const auto encoder = std::ranges::find_if(culprits, [&](const std::string& name) {
            return MakesInput(*byName.at(name), decoder);
        });
        const bool isMade =
            encoder != culprits.end() && !HasSample(session.options.application, decoder.codec);
        return isMade ? *encoder : std::string();
    }

    Session& session;
    const Names& leftOut;
    std::vector<Item>& codecs;
    std::map<std::string, Item*> byName;
    std::deque<std::string> ids;           // not dealt out yet
    std::deque<Names> rests;               // of batches whose runs ended early
    std::map<std::string, Attempt> seen;   // of culprits and failures
    std::map<std::string, Names> batchOf;  // arguments of their runs
    Names culprits, failures;
    double startSeconds = 0;
    double secondsOfId = 0;  // 0: not measured yet
};

}  // namespace

void CheckCodecs(Session& session, const Names& leftOut, std::vector<Item>& codecs) {
    CodecPhase(session, leftOut, codecs).Check();
}

}  // namespace Tarnex::Parent
