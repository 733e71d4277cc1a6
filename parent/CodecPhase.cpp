#include "parent/CodecPhase.h"

#include <algorithm>
#include <cmath>

#include "core/media/CodecFactory.h"
#include "core/media/Formats.h"
#include "core/support/Constants.h"
#include "parent/Installation.h"

namespace Tarnex::Parent {
namespace {

using Core::Utils::EMPTY_VALUE;

/// A start costs a tenth of its run at most.
constexpr double WORK_PER_START = 10;
/// Until it is known what a start and a test take here.
constexpr std::size_t LEAST_BATCH = 8;

bool IsDecoder(const Item& item) {
    return item.coder == "Decoder";
}

bool NeedsQuiet(const Attempt& attempt) {
    return attempt.verdict == Verdict::Hung || attempt.reason == "SIGKILL";
}

/// Those whose decoder test takes its input from whichever module gives it.
bool HasAnyonesInput(const std::string& codecId) {
    return codecId == Proc::IFormatCodecVideo::CODEC_ID_H265 ||
           codecId == Proc::IFormatCodecAudio::CODEC_ID_AC3;
}

void AddOnce(Names& names, const std::string& name) {
    if (!Contains(names, name)) {
        names.push_back(name);
    }
}

}  // namespace

CodecPhase::CodecPhase(Session& session, Runs& runs, Names leftOut, std::vector<Item>& items)
    : session(session), runs(runs), leftOut(std::move(leftOut)), items(items) {
    std::set<std::string> known;
    for (Item& item : items) {
        byName[item.name] = &item;
        if (item.verdict == Verdict::NotReached && known.insert(item.codec).second) {
            ids.push_back(item.codec);
        }
    }
}

void CodecPhase::Check() {
    const auto open = std::count_if(items.begin(), items.end(), [](const Item& item) {
        return item.verdict == Verdict::NotReached;
    });
    session.progress = {"codecs", 0, static_cast<std::size_t>(open), {}, {}};
    runs.Drain([this] { return Next(); });
    session.progress.phase = "trials";
    LookAgain();
    TellDecoders();
}

std::optional<Job> CodecPhase::Next() {
    if (batches.empty() && !ids.empty()) {
        batches.push_back(Deal());
    }
    if (!batches.empty()) {
        Job job = BatchJob(std::move(batches.front()));
        batches.pop_front();
        return job;
    }
    if (trials.empty()) {
        return std::nullopt;
    }
    Job job = std::move(trials.front());
    trials.pop_front();
    return job;
}

/// All open tests of the next ids.
CodecPhase::Batch CodecPhase::Deal() {
    const auto end = ids.begin() + static_cast<std::ptrdiff_t>(BatchSize());
    const std::set<std::string> dealt(ids.begin(), end);
    ids.erase(ids.begin(), end);
    Batch batch;
    for (const Item& item : items) {
        if (item.verdict == Verdict::NotReached && dealt.contains(item.codec)) {
            batch.tests.push_back(item.name);
        }
    }
    return batch;
}

/// Large ones first, smaller towards the end, so that all runs end at about the same time.
std::size_t CodecPhase::BatchSize() const {
    const std::size_t jobs = session.options.jobs;
    const std::size_t share = jobs == 1 ? ids.size() : ids.size() / (2 * jobs);
    const double worthwhile = std::ceil(WORK_PER_START * startSeconds / secondsOfId);
    const double most = static_cast<double>(ids.size());
    const std::size_t least =
        secondsOfId > 0 ? static_cast<std::size_t>(std::min(worthwhile, most)) : LEAST_BATCH;
    return std::clamp<std::size_t>(std::max(share, least), 1, ids.size());
}

/// A run that tests these and nothing else. The list of tests to leave out begins with a comma:
/// else encoders alone in it would keep all decoders out.
Job CodecPhase::TestJob(const Names& tests) const {
    Names implementations, codecs;
    for (const std::string& test : tests) {
        AddOnce(implementations, byName.at(test)->implementation);
        AddOnce(codecs, byName.at(test)->codec);
    }
    Names passed;
    for (const Item& item : items) {
        if (Contains(codecs, item.codec) && Contains(implementations, item.implementation) &&
            !Contains(tests, item.name)) {
            passed.push_back(item.name);
        }
    }
    Job job;
    job.arguments = {"codecs",
                     session.GenerousTime(tests.size()),
                     JoinOrNothing(implementations),
                     JoinOrNothing(codecs),
                     JoinOrNothing(leftOut),
                     EMPTY_VALUE,
                     EMPTY_VALUE,
                     EMPTY_VALUE,
                     passed.empty() ? EMPTY_VALUE : std::string(",").append(JoinOrNothing(passed)),
                     EMPTY_VALUE};
    job.watch = Watch(ItemKind::Codec, tests);
    return job;
}

Job CodecPhase::BatchJob(Batch batch) {
    Job job = TestJob(batch.tests);
    job.done = [this, batch = std::move(batch)](const Run& run) { TakeBatch(run, batch); };
    return job;
}

void CodecPhase::TakeBatch(const Run& run, Batch batch) {
    const Watch& watch = run.GetWatch();
    for (const auto& [name, attempt] : watch.Attempts()) {
        if (!IsBad(attempt.verdict)) {
            Decide(name, attempt, attempt);
            continue;
        }
        sights[name] = {attempt, run.Facts().arguments};
        if (name == watch.Culprit()) {
            enders.insert(name);
            AddTrial(name, false);
        }
    }
    Measure(run);
    GoOn(run, std::move(batch), batches);
}

void CodecPhase::Measure(const Run& run) {
    std::set<std::string> tested;
    for (const auto& [name, attempt] : run.GetWatch().Attempts()) {
        tested.insert(byName.at(name)->codec);
    }
    if (run.GetWatch().IsFinished() && !tested.empty()) {
        startSeconds = run.StartSeconds();
        secondsOfId = (run.Facts().seconds - startSeconds) / static_cast<double>(tested.size());
    }
}

/// With what the run didn't come to.
void CodecPhase::GoOn(const Run& run, Batch batch, std::deque<Batch>& queue) {
    const Watch& watch = run.GetWatch();
    batch.tests = watch.Untouched();
    if (batch.tests.empty()) {
        return;
    }
    if (!watch.Begun().empty()) {
        batch.repeated = false;
    } else if (watch.IsFinished()) {
        session.Note("A run didn't offer what was listed: " + JoinOrNothing(batch.tests));
        return;
    } else {
        RequireFirst(batch.repeated, run);
    }
    queue.push_front(std::move(batch));
}

void CodecPhase::AddTrial(const std::string& name, bool repeated) {
    Job job = TestJob({name});
    job.alone = NeedsQuiet(sights.at(name).attempt);
    job.done = [=, this](const Run& run) { TakeTrial(run, name, repeated); };
    trials.insert(job.alone ? trials.end() : trials.begin(), std::move(job));
}

void CodecPhase::TakeTrial(const Run& run, const std::string& name, bool repeated) {
    const auto& attempts = run.GetWatch().Attempts();
    if (const auto attempt = attempts.find(name); attempt != attempts.end()) {
        Decide(name, sights.at(name).attempt, attempt->second);
    } else {
        RequireFirst(repeated, run);
        AddTrial(name, repeated);
    }
}

/// At all failures, in one run with nothing beside it: a device may serve few at a time.
void CodecPhase::LookAgain() {
    Batch batch;
    for (const auto& [name, sight] : sights) {
        if (sight.attempt.verdict == Verdict::Failed) {
            batch.tests.push_back(name);
        }
    }
    while (!batch.tests.empty()) {
        Job job = TestJob(batch.tests);
        std::deque<Batch> rest;
        job.done = [&](const Run& run) { TakeSecondLook(run, std::move(batch), rest); };
        std::deque<Job> queue;
        queue.push_back(std::move(job));
        runs.Drain(queue);
        batch = rest.empty() ? Batch() : std::move(rest.front());
    }
}

/// The later outcome of a failure counts; who ends a run only now is unsteady.
void CodecPhase::TakeSecondLook(const Run& run, Batch batch, std::deque<Batch>& rest) {
    for (const auto& [name, attempt] : run.GetWatch().Attempts()) {
        const bool ended = EndsRuns(attempt.verdict);
        Decide(name, ended ? sights.at(name).attempt : attempt, attempt);
    }
    GoOn(run, std::move(batch), rest);
}

void CodecPhase::Decide(const std::string& name, const Attempt& seen, const Attempt& alone) {
    Item& item = *byName.at(name);
    Judge(item, seen, alone);
    ++session.progress.done;
    if (item.verdict == Verdict::Unsteady) {
        session.SetRepro(item, sights.at(name).arguments);
    } else if (IsBad(item.verdict)) {
        session.SetRepro(item, TestJob({name}).arguments);
    }
    if (!IsDecoder(item) || !enders.contains(name)) {
        session.Tell(item);
    }
}

/// Encoders that make the input of decoder tests may have ended runs since.
void CodecPhase::TellDecoders() {
    for (const std::string& name : enders) {
        Item& item = *byName.at(name);
        if (IsDecoder(item)) {
            item.input = InputOf(item);
            session.Tell(item);
        }
    }
}

std::string CodecPhase::InputOf(const Item& decoder) const {
    if (HasSample(session.application, decoder.codec)) {
        return {};
    }
    for (const std::string& name : enders) {
        const Item& encoder = *byName.at(name);
        if (!IsDecoder(encoder) && encoder.codec == decoder.codec &&
            (HasAnyonesInput(encoder.codec) || encoder.implementation == Proc::ImplNames::FFMPEG)) {
            return name;
        }
    }
    return {};
}

}  // namespace Tarnex::Parent
