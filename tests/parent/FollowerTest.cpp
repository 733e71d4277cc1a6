#include "parent/Follower.h"

#include <gtest/gtest.h>

#include "core/exercise/Tags.h"
#include "core/support/Constants.h"

namespace {

using namespace Tarnex::Parent;       // NOLINT(google-build-using-namespace)
using namespace Tarnex::Core::Utils;  // NOLINT(google-build-using-namespace)

/// "name=verdict(reason) ..." after these records and an end by this signal.
std::string Follow(Work work, const Names& expected, const std::vector<Record>& records) {
    Follower follower(work, expected);
    for (const Record& record : records) {
        follower.Take(record, Clock::now());
    }
    follower.End(FromEnd({.signal = "SIGSEGV"}), Clock::now());
    std::string found;
    for (const auto& [name, attempt] : follower.attempts) {
        found += name + "=" + std::string(ToString(attempt.verdict)) + "(" + attempt.reason + ") ";
    }
    for (const std::string& name : follower.strays.names) {
        found += "stray " + name + " ";
    }
    return found + (follower.finished ? "finished" : "");
}

Record Load(const char* name) {
    return {LOAD_PLUGIN_NAME_TAG, name};
}

const Record LOADED{LOADED_PLUGINS_TAG, "true"};

TEST(Follower, BelievesOfPluginsWhatCanBeTrue) {
    const Record reported{PLUGINS_TAG, "a"};
    const Record text{ERROR_TAG, "std::exception::what: outer\nstd::exception::what: inner\nmore"};
    const Record listed{ERROR_TAG, "a: \nTest Error\n"};
    const struct {
        const char* found;
        Names expected;
        std::vector<Record> records;
    } rows[] = {
        {"a=good() b=good() finished", {"a", "b"}, {Load("a"), Load("b"), LOADED}},
        {"a=good() b=crashed(SIGSEGV) ", {"a", "b"}, {Load("a"), Load("b")}},
        {"a=failed(inner) finished", {"a"}, {Load("a"), reported, text, LOADED}},
        {"a=failed() finished", {"a"}, {Load("a"), reported, LOADED}},
        {"a=good() finished", {"a"}, {Load("a"), text, LOADED}},
        {"MediaFoundationCodecs=tolerated(inner) finished",
         {"MediaFoundationCodecs"},
         {Load("MediaFoundationCodecs"), text, LOADED}},
        // The run passed it over: it found no file.
        {"b=good() finished",
         {"a", "b"},
         {{WARNING_TAG, "Can't find plugin a"}, Load("b"), LOADED}},
        // What the run was told not to load.
        {"b=good() finished", {"b"}, {reported, listed, Load("b"), reported, listed, LOADED}},
        // Listed by two factories: the worse place counts.
        {"a=failed(inner) b=good() finished",
         {"a", "b", "a"},
         {Load("a"), reported, text, Load("b"), Load("a"), LOADED}},
        // Somebody else's records.
        {"a=good() b=crashed(SIGSEGV) stray c ",
         {"a", "b", "c"},
         {Load("a"), Load("c"), Load("b")}},
        {"a=crashed(SIGSEGV) ", {"a", "b"}, {Load("a"), LOADED}},
        {"b=good() stray a finished", {"b"}, {Load("b"), reported, text, LOADED}},
        {"a=crashed(SIGSEGV) stray b ", {"a", "b"}, {Load("a"), {LOAD_PLUGIN_NAME_TAG, "b", 7}}},
    };
    for (const auto& [found, expected, records] : rows) {
        EXPECT_EQ(Follow(Work::LoadPlugins, expected, records), found);
    }
}

TEST(Follower, KnowsATestWithoutMaterial) {
    const auto test = [](const char* name, const char* text) {
        const Names expected{name};
        return Follow(Work::TestCodecs, expected,
                      {{TEST_CODEC_TAG, name},
                       {ERROR_TAG, text},
                       {CODECS_TAG, name},
                       {TESTED_CODECS_TAG, "true"}});
    };
    EXPECT_EQ(test("Decoder.I.X", "X stream not found"),
              "Decoder.I.X=no-material(X stream not found) finished");
    EXPECT_EQ(test("Encoder.I.X", "X stream not found"),
              "Encoder.I.X=failed(X stream not found) finished");
    EXPECT_EQ(test("Decoder.I.X", "else"), "Decoder.I.X=failed(else) finished");
}

TEST(Follower, TellsOfAnExerciseWhatLedToItsEnd) {
    using namespace Tarnex::Exercise;  // NOLINT(google-build-using-namespace)
    Follower follower(Work::Exercise, {"m/a", "m/b", "m/c"});
    const auto take = [&](std::string_view tag, const char* message) {
        return follower.Take({tag, message}, Clock::now());
    };
    take(EXERCISE_TAG, "m/a");
    take(REMARK_TAG, "slow");
    take(ERROR_TAG, "needs a window");
    take(UNAVAILABLE_TAG, "m/a");
    take(EXERCISE_TAG, "m/b");
    take(TITLE_TAG, "Bad one");
    follower.TakeText("before");
    EXPECT_TRUE(take(STEP_TAG, "run, block 2"));
    follower.TakeText("assertion failed\n");
    follower.End(FromEnd({.signal = "SIGABRT"}), Clock::now());
    const Attempt& first = follower.attempts.at("m/a");
    EXPECT_EQ(first.verdict, Verdict::Unavailable);
    EXPECT_EQ(first.remarks, Names{"slow"});
    const Attempt& second = follower.attempts.at("m/b");
    EXPECT_EQ(second.verdict, Verdict::Crashed);
    EXPECT_EQ(second.title, "Bad one");
    EXPECT_EQ(second.text, "run, block 2\nassertion failed");
    EXPECT_EQ(follower.Untouched(), Names{"m/c"});
}

}  // namespace
