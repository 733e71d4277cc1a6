#include "parent/Watch.h"

#include <gtest/gtest.h>

#include "core/support/Constants.h"

namespace {

using namespace Tarnex::Parent;       // NOLINT(google-build-using-namespace)
using namespace Tarnex::Core::Utils;  // NOLINT(google-build-using-namespace)

/// "name=verdict(reason) ..." after these records and an end by this signal.
std::string Follow(ItemKind kind, const Names& expected, const std::vector<Record>& records) {
    Watch watch(kind, expected);
    for (const Record& record : records) {
        watch.Take(record, Clock::now());
    }
    watch.End(FromEnd({.signal = "SIGSEGV"}), Clock::now());
    std::string found;
    for (const auto& [name, attempt] : watch.attempts) {
        found += name + "=" + std::string(ToString(attempt.verdict)) + "(" + attempt.reason + ") ";
    }
    for (const std::string& name : watch.strays) {
        found += "stray " + name + " ";
    }
    return found + (watch.finished ? "finished" : "");
}

Record Load(const char* name) {
    return {LOAD_PLUGIN_NAME_TAG, name};
}

const Record LOADED{LOADED_PLUGINS_TAG, "true"};

TEST(Watch, BelievesOfPluginsWhatCanBeTrue) {
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
        {"a=tolerated(inner) finished", {"a"}, {Load("a"), text, LOADED}},
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
    };
    for (const auto& [found, expected, records] : rows) {
        EXPECT_EQ(Follow(ItemKind::Plugin, expected, records), found);
    }
}

TEST(Watch, KnowsAFailureOfTheRun) {
    const Record error{ERROR_TAG, "text"};
    const struct {
        bool itself;
        std::vector<Record> records;
    } rows[] = {{true, {error}},
                {true, {{WARNING_TAG, "Can't find plugin a"}, error}},
                {false, {Load("a"), error}},
                {true, {Load("a"), LOADED, error}}};
    for (const auto& [itself, records] : rows) {
        Watch watch(ItemKind::Plugin, {"a"});
        for (const Record& record : records) {
            watch.Take(record, Clock::now());
        }
        EXPECT_EQ(watch.failedItself, itself);
    }
}

TEST(Watch, KnowsATestWithoutMaterial) {
    const auto test = [](const char* name, const char* text) {
        const Names expected{name};
        return Follow(ItemKind::Codec, expected,
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

}  // namespace
