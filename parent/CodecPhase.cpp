#include <algorithm>
#include <random>
#include <set>

#include "core/media/CodecFactory.h"
#include "core/media/Formats.h"
#include "core/media/PluginFactories.h"
#include "parent/Hardware.h"
#include "parent/Phases.h"
#include "parent/Testing.h"
#include "platform/Machine.h"

namespace Tarnex::Parent {
namespace {

/// Before a module is named: a test may crash by chance.
constexpr int CONFIRMATIONS = 2;
/// For all searches of a check.
constexpr std::chrono::minutes MOST_TIME{2};
/// Among the arguments, of the names that the media core starts without.
constexpr std::size_t LEFT_OUT_PLACE = 4;

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

class CodecPhase : public TestKind {
public:
    CodecPhase(Session& session, const Names& leftOut, std::vector<Item>& plugins,
               std::vector<Item>& codecs)
        : session(session),
          leftOut(leftOut),
          plugins(plugins),
          codecs(codecs),
          testing(session, *this, codecs) {
        for (const Item& item : codecs) {
            testsOf[item.codec].push_back(&item);
        }
    }

    void Check() {
        session.runs.progress.phase = "codecs";
        testing.Check(MakeGroups());
        searchUntil = Clock::now() + MOST_TIME;
        FindSpoilersOfEnd();
        for (Item& item : codecs) {
            if (EndsRuns(item.verdict) && !item.carried) {
                item.input = IsDecoder(item) ? InputOf(item) : std::string();
            }
            // Each question about a hang may take as long as a test may.
            if (EndsRuns(item.verdict) && item.verdict != Verdict::Hung && !item.carried) {
                FindSpoiler(item);
            }
            if (item.verdict != Verdict::NotReached) {
                session.Tell(item);
            }
        }
    }

    Job MakeJob(const Names& tests) override { return MakeJobWithout(tests, leftOut); }

    Job MakeTrial(const std::string& test) override { return MakeJob({test}); }

    std::size_t CountBytes(const Names& group) const override {
        const std::string& codec = codecOf.at(group.front());
        std::size_t bytes = codec.size() + 1;
        for (const Item* test : testsOf.at(codec)) {
            bytes += test->name.size() + 1;
        }
        return bytes;
    }

    bool TriesFailuresAlone() const override { return false; }

    Attempt Assess(const Item& item, const Attempt& attempt) const override {
        const auto reason = attempt.verdict == Verdict::Failed
                                ? WhyUnavailable(item.implementation, attempt.text, cards)
                                : std::nullopt;
        return reason ? Attempt{.verdict = Verdict::Unavailable,
                                .reason = *reason,
                                .text = attempt.text,
                                .seconds = attempt.seconds}
                      : attempt;
    }

    void Judge(Item& item, const Suspect& suspect) const override {
        Parent::Judge(item, suspect.seen, *suspect.alone);
    }

    /// Who makes its input, and who else is in its process, may be found out later.
    bool IsFinal(const Item& item) const override { return !EndsRuns(item.verdict); }

private:
    /// The tests of an id belong together. Neighbours in the alphabet cost alike; batches should.
    /// The same order in every check.
    std::deque<Names> MakeGroups() {
        std::deque<Names> groups;
        for (const auto& [codec, tests] : testsOf) {
            Names group;
            for (const Item* test : tests) {
                if (test->verdict == Verdict::NotReached) {
                    group.push_back(test->name);
                    codecOf[test->name] = codec;
                }
            }
            if (!group.empty()) {
                groups.push_back(std::move(group));
            }
        }
        std::shuffle(groups.begin(), groups.end(), std::minstd_rand());
        return groups;
    }

    /// The list of tests to leave out begins with a comma: else encoders alone in it would keep all
    /// decoders out.
    Job MakeJobWithout(const Names& tests, const Names& modules) {
        std::set<std::string> wanted(tests.begin(), tests.end()), implementations, ids;
        for (const std::string& test : tests) {
            implementations.insert(testing.Find(test).implementation);
            ids.insert(testing.Find(test).codec);
        }
        std::string others;
        for (const std::string& id : ids) {
            for (const Item* item : testsOf.at(id)) {
                if (implementations.contains(item->implementation) &&
                    !wanted.contains(item->name)) {
                    others += "," + item->name;
                }
            }
        }
        Job job = session.MakeJob(Work::TestCodecs, tests,
                                  {{3, Join({implementations.begin(), implementations.end()})},
                                   {4, Join({ids.begin(), ids.end()})},
                                   {5, Join(modules)},
                                   {9, others}});
        job.wantFiles = true;
        return job;
    }

    /// The encoder test that ended a run and makes the decoder's input.
    std::string InputOf(const Item& decoder) const {
        const auto& tests = testsOf.at(decoder.codec);
        const auto encoder = std::ranges::find_if(tests, [&](const Item* item) {
            return EndsRuns(item->verdict) && MakesInput(*item, decoder);
        });
        const bool isMade =
            encoder != tests.end() && !session.installation.HasSample(decoder.codec);
        return isMade ? (*encoder)->name : std::string();
    }

    /// All codec modules share the process. One that harms the test of another is found by leaving
    /// it out; parsers stay, because they may open the test's sample. Without its own module a test
    /// isn't offered, without input it isn't done: then nothing is known.
    void FindSpoiler(Item& item) {
        const Names spoilers = FindWithout({item.name}, [&](const Run& run) {
            const auto& attempts = run.job.follower.attempts;
            const auto attempt = attempts.find(item.name);
            return attempt != attempts.end() && attempt->second.verdict == Verdict::Good;
        });
        if (!spoilers.empty()) {
            Blame(item, spoilers.front());
        }
    }

    /// Who makes a run end badly after its last record.
    void FindSpoilersOfEnd() {
        const Names& tests = testing.GetTestsOfBadEnd();
        if (tests.empty()) {
            return;
        }
        const Names spoilers = FindWithout(
            tests, [](const Run& run) { return run.job.follower.finished && !EndsBadly(run); });
        if (!spoilers.empty()) {
            session.result.badEnd += ", not without " + Join(spoilers);
        }
    }

    /// The modules without any one of which a run of the tests is right each time, as it never is
    /// with all of them.
    Names FindWithout(const Names& tests, const std::function<bool(const Run&)>& isRight) {
        Names found;
        for (const auto& [name, factory] : session.order) {
            if (IsOfCore(factory) && factory != Core::PARSER_FACTORY && !Contains(leftOut, name)) {
                found.push_back(name);
            }
        }
        for (int i = 0; i < CONFIRMATIONS && !found.empty() && Clock::now() < searchUntil; ++i) {
            found = RunWithout(tests, found, isRight);
            if (!found.empty() && !RunWithout(tests, {""}, isRight).empty()) {
                return {};
            }
        }
        return Clock::now() < searchUntil ? found : Names();
    }

    /// A run without each of them (without none: an empty name). Gives those whose run is right.
    Names RunWithout(const Names& tests, const Names& modules,
                     const std::function<bool(const Run&)>& isRight) {
        std::vector<Job> jobs;
        std::map<std::string, std::string> moduleOf;  // by what the run is told to leave out
        for (const std::string& module : modules) {
            Names without = leftOut;
            if (!module.empty()) {
                without.push_back(module);
            }
            jobs.push_back(MakeJobWithout(tests, without));
            moduleOf[jobs.back().arguments[LEFT_OUT_PLACE]] = module;
        }
        Names right;
        session.runs.RunAll(std::move(jobs), [&](const Run& run) {
            if (isRight(run)) {
                right.push_back(moduleOf.at(run.job.arguments[LEFT_OUT_PLACE]));
            }
        });
        return right;
    }

    void Blame(Item& item, const std::string& module) {
        item.verdict = Verdict::Unsteady;
        item.company = {module};
        const auto spoiler = std::ranges::find(plugins, module, &Item::name);
        if (spoiler != plugins.end()) {
            spoiler->spoils.push_back(item.name);
            if (spoiler->verdict == Verdict::NotReached) {
                spoiler->verdict = Verdict::Good;  // The media core started with it.
            }
        }
    }

    Session& session;
    const Names& leftOut;
    std::vector<Item>& plugins;
    std::vector<Item>& codecs;
    std::map<std::string, std::vector<const Item*>> testsOf;  // by codec id
    std::map<std::string, std::string> codecOf;               // by wanted test
    const std::vector<std::string> cards = Platform::ListGraphicsCards();
    Testing testing;
    Clock::time_point searchUntil;
};

}  // namespace

void CheckCodecs(Session& session, const Names& leftOut, std::vector<Item>& plugins,
                 std::vector<Item>& codecs) {
    CodecPhase(session, leftOut, plugins, codecs).Check();
}

}  // namespace Tarnex::Parent
