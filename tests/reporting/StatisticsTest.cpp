#include "reporting/Statistics.h"

#include <gtest/gtest.h>

#include "codecs/CodecChecker.h"
#include "plugins/PluginChecker.h"
#include "run/timer/PhaseTimer.h"

namespace Tarnex::Core::Utils {

// Stand before the checkers of the libraries, whose findings would need a media core.
using Names = std::vector<std::string>;

Names PluginChecker::GetAllPlugins() const {
    return {"alpha", "beta", "gamma", "delta"};
}

void PluginChecker::Check() {
    failedPlugins = {"beta", "gamma"};
    whiteBrokenPlugins = {"gamma"};
    errorInfo = std::string(10239, 'x') + "yz";
}

CodecChecker::CodecChecker(bool useMultithreading)
    : useMultithreading(useMultithreading), threadPool(1) {}

CodecChecker::~CodecChecker() = default;

CodecLists CodecChecker::GetAllCodecsByOption() const {
    return {{"Codecs.Decoder.X", {"c1"}}, {"Codecs.Encoder.X", {"c1", "c2"}}};
}

namespace {

std::string Report(const PluginChecker& plugins, const Names& brokenPlugins,
                   const CodecLists& brokenCodecs) {
    const CodecChecker codecs(false);
    testing::internal::CaptureStderr();
    ReportStatistics(plugins, codecs, BrokenPlugins(brokenPlugins), BrokenCodecs(brokenCodecs));
    const std::string line = testing::internal::GetCapturedStderr();
    return line.substr(line.find("[STATISTICS]"));
}

TEST(Statistics, ReportTheWorkTimeOfACleanRunAlone) {
    pluginPhaseTime = std::chrono::nanoseconds(1234567499);
    EXPECT_EQ(Report({}, {}, {}), R"([STATISTICS]{"ASSAYER_WORK_TIME":{"CODEC_TIME":"0.000000",)"
                                  "\"PLUGIN_TIME\":\"1.234567\"}}[/STATISTICS]\n");
}

TEST(Statistics, ReportWhatIsBroken) {
    PluginChecker plugins;
    plugins.Check();
    const std::string line = Report(
        plugins, {"beta"}, {{"Codecs.Encoder.X", {"c2", "other"}}, {"Codecs.Encoder.Y", {"c1"}}});
    EXPECT_EQ(line.find(R"([STATISTICS]{"ASSAYER_WORK_TIME":{)"), 0U);
    EXPECT_NE(line.find(R"("CORE_PLUGIN_CHECK":{"ERROR":"beta,gamma","ERROR_INFO":")" +
                        std::string(10239, 'x') + R"(y","FF_UNSUCCESS":"gamma",)" +
                        R"("SUCCESS":"alpha,gamma,delta","UNSUCCESS":"beta"},)" +
                        R"("Encoder.X":{"c1":"YES","c2":"NO"}}[/STATISTICS])"),
              std::string::npos)
        << line;
}

}  // namespace
}  // namespace Tarnex::Core::Utils
