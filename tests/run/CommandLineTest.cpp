#include "run/CommandLine.h"

#include <gtest/gtest.h>

#include <fstream>

namespace Tarnex::Core::Utils {
namespace {

using Strings = std::vector<std::string>;

struct Outcome {
    bool accepted;
    Config config;
    std::string out;
    std::string err;
};

Outcome Parse(Strings arguments) {
    arguments.insert(arguments.begin(), "Assayer");
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    Outcome outcome{};
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    outcome.accepted = ParseCommandLine(static_cast<int>(argv.size()), argv.data(), outcome.config);
    outcome.out = testing::internal::GetCapturedStdout();
    outcome.err = testing::internal::GetCapturedStderr();
    return outcome;
}

std::string WriteFile(const std::string& name, const std::string& content) {
    std::string path = testing::TempDir() + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

TEST(CommandLine, NoArgumentsPrintTheUsage) {
    const Outcome outcome = Parse({});
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.out,
              "Wrong number of command arguments: 1\n"
              "\tAssayer options:\n"
              "\t\tAssayer <plugins|codecs|all> CheckTimeoutInSeconds [VerifiableCodecImpls] "
              "[VerifiableCodecs] [BrokenPluginsPath] [BrokenCodecsPath] [LastFailedLoadPlugin] "
              "[LastFailedCodecsTest] [isUsingMultithreadingCodecChecking]\n\n"
              "\tExamples:\n"
              "\t\tAssayer plugins 60\n"
              "\t\tAssayer plugins 60\n"
              "\t\tAssayer codecs 10 \"MEDIA_FOUNDATION_IMPL\" \"CODEC_ID_AAC\"\n"
              "\t\tAssayer all 60 \"MEDIA_FOUNDATION_IMPL\" \n"
              "\t\tAssayer all 60 \"MEDIA_FOUNDATION_IMPL\" C:\\brokenPlugins.txt\n"
              "\t\tAssayer all 60 \"MEDIA_FOUNDATION_IMPL\" C:\\brokenPlugins.txt "
              "C:\\brokenCodecs.txt\n"
              "\t\tAssayer all 60 \"MEDIA_FOUNDATION_IMPL\" - C:\\brokenCodecs.txt\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(CommandLine, RefusalsSayWhatIsMissing) {
    const struct {
        Strings arguments;
        const char* reason;
    } rows[] = {
        {{""}, "[ERROR]Check Type is empty[/ERROR]"},
        {{"plugins"}, "[ERROR]Check core timeout is empty[/ERROR]"},
        {{"nonsense", ""}, "[ERROR]Check core timeout is empty[/ERROR]"},
        {{"all", "10", ""}, "[ERROR]Verifiable codecs implementations are empty[/ERROR]"},
        {{"codecs", "10", "X"}, "[ERROR]Verifiable codecs list are empty[/ERROR]"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = Parse(row.arguments);
        EXPECT_FALSE(outcome.accepted) << row.reason;
        EXPECT_NE(outcome.err.find(row.reason), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
}

TEST(CommandLine, PluginRunsIgnoreTheCodecPositions) {
    const Config config = Parse({"plugins", " 60abc", "", "X"}).config;
    EXPECT_EQ(config.checkType, CheckType::Plugins);
    EXPECT_EQ(config.checkTimeoutInSeconds, 60);
    EXPECT_EQ(config.verifiableCodecImpls, Strings{});
    EXPECT_EQ(config.verifiableCodecs, Strings{});
}

TEST(CommandLine, ListsAreSplitAtCommasAndTrimmed) {
    const Config config = Parse({"all", "-1", " A , B\r\n,", ",a\n,,-"}).config;
    EXPECT_EQ(config.checkTimeoutInSeconds, -1);
    EXPECT_EQ(config.verifiableCodecImpls, (Strings{"A", "B"}));
    EXPECT_EQ(config.verifiableCodecs, (Strings{"", "a", "", "-"}));
}

TEST(CommandLine, PlaceholdersCountAsMissing) {
    const Outcome outcome = Parse({"all", "1", "I", "C", "-", "-", "-", "-", "-", "1"});
    EXPECT_TRUE(outcome.config.extraDisabledPlugins.empty());
    EXPECT_TRUE(outcome.config.lastFailedLoadPlugin.empty());
    EXPECT_TRUE(outcome.config.lastFailedCodecsTest.empty());
    EXPECT_TRUE(outcome.config.isUsingMultithreadingCodecChecking);
    EXPECT_EQ(outcome.err.find("Can't find path"), std::string::npos) << outcome.err;

    const Config filled = Parse({"all", "1", "I", "C", "p, q", "-", "-", "--", " -"}).config;
    EXPECT_EQ(filled.extraDisabledPlugins, "p, q");
    EXPECT_EQ(filled.lastFailedLoadPlugin, "--");
    EXPECT_EQ(filled.lastFailedCodecsTest, " -");
}

TEST(CommandLine, OnlyAOneAsTheTenthAndLastArgumentEnablesThreads) {
    const Strings nine{"all", "1", "I", "C", "-", "-", "-", "-", "-"};
    for (const Strings& rest : {Strings{"true"}, {"0"}, {"01"}, {" 1"}, {""}, {"1", "1"}}) {
        Strings arguments = nine;
        arguments.insert(arguments.end(), rest.begin(), rest.end());
        EXPECT_FALSE(Parse(arguments).config.isUsingMultithreadingCodecChecking) << rest[0];
    }
}

TEST(CommandLine, ListFilesAreRead) {
    const std::string plugins = WriteFile("plugins.txt", "Plugins.B: beta\nPlugins.A: x, alpha\n");
    const std::string codecs = WriteFile("codecs.txt", "Codecs.Encoder.I: C, D\n");
    const Config config = Parse({"codecs", "1", "I", "C", "", plugins, codecs}).config;
    EXPECT_EQ(static_cast<const Strings&>(config.brokenPlugins), (Strings{"x", "alpha", "beta"}));
    EXPECT_EQ(static_cast<const CodecLists&>(config.brokenCodecs),
              (CodecLists{{"Codecs.Encoder.I", {"C", "D"}}}));
}

TEST(CommandLine, MissingListFilesAreAWarning) {
    const Outcome outcome = Parse({"plugins", "1", "", "", "", "/no/such", "/nor/this"});
    EXPECT_TRUE(outcome.accepted);
    EXPECT_NE(outcome.err.find("[WARNING]Can't find path: /no/such[/WARNING]"), std::string::npos);
    EXPECT_NE(outcome.err.find("[WARNING]Can't find path: /nor/this[/WARNING]"), std::string::npos);
}

}  // namespace
}  // namespace Tarnex::Core::Utils
