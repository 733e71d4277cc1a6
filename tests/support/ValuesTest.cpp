#include <gtest/gtest.h>

#include "core/support/BrokenPlugins.h"
#include "core/support/CodecConfig.h"
#include "core/support/Exception.h"
#include "core/support/StatisticInfo.h"

namespace Tarnex::Core::Utils {
namespace {

TEST(CodecConfig, RoundTripsItsIdAndRefusesOtherTexts) {
    const CodecConfig config("Encoder.X.CODEC_ID_ACELP.KELVIN");
    EXPECT_EQ(config.GetCoderType(), CoderType::Encoder);
    EXPECT_EQ(config.GetImplementation(), "X");
    EXPECT_EQ(config.GetCodecId(), "CODEC_ID_ACELP.KELVIN");
    EXPECT_EQ(config.GetID(), "Encoder.X.CODEC_ID_ACELP.KELVIN");
    EXPECT_TRUE(CodecConfig("").IsEmpty());
    EXPECT_EQ(CodecConfig("").GetID(), "");
    for (const char* id :
         {" ", "..", "Decoder", "Decoder.X", "Decoder..C", "Decoder.X.", "decoder.X.C",
          "Decoder.A B.C", "Decoder.A:B.C", "Decoder.\xC3.C", "Decoder.X.C,D", "Decoder.X. C",
          "Decoder.X.C ", "Decoder.X.\tC", "Decoder.X.C\x7F", "Decoder.X.\xC3"}) {
        EXPECT_THROW(CodecConfig{std::string(id)}, Exception) << id;
    }
}

TEST(BrokenPlugins, SplitsAndTrims) {
    BrokenPlugins plugins("alpha, beta ,,");
    plugins.Add("\tgamma,alpha");
    EXPECT_EQ(static_cast<const std::vector<std::string>&>(plugins),
              (std::vector<std::string>{"alpha", "beta", "gamma", "alpha"}));
    EXPECT_FALSE(BrokenPlugins(" , "));
}

TEST(StatisticInfo, IsOneLineOfJson) {
    StatisticInfo info;
    EXPECT_EQ(std::string(info), "{}");
    info["b"] = {{"2", "two\nlines \"\xC3\xA4\" \xFF"}, {"1", ""}};
    StatisticInfo other;
    other["a"];
    other.Add(info);
    other["b"]["3"];
    info.Add(other);
    EXPECT_EQ(std::string(info),
              "{\"a\":{},\"b\":{\"1\":\"\",\"2\":\"two\\nlines \\\"\xC3\xA4\\\" "
              "\xEF\xBF\xBD\",\"3\":\"\"}}");
}

}  // namespace
}  // namespace Tarnex::Core::Utils
