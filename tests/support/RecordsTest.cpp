#include <gtest/gtest.h>

#include "core/support/BrokenPlugins.h"
#include "core/support/CheckType.h"
#include "core/support/CodecConfig.h"
#include "core/support/EntryWrapper.h"
#include "core/support/Exception.h"
#include "core/support/ModuleOptions.h"
#include "core/support/StatisticInfo.h"

namespace Tarnex::Core::Utils {
namespace {

TEST(CodecConfig, RoundTripsItsId) {
    for (const char* id : {"Decoder.FFMPEG_IMPL.CODEC_ID_AAC", "Encoder.X.CODEC_ID_ACELP.KELVIN",
                           "Decoder.X.CODEC ID"}) {
        EXPECT_EQ(CodecConfig(id).GetID(), id);
        EXPECT_FALSE(CodecConfig(id).IsEmpty());
    }
    const CodecConfig config("Encoder.X.CODEC_ID_ACELP.KELVIN");
    EXPECT_EQ(config.GetCoderType(), CoderType::Encoder);
    EXPECT_EQ(config.GetImplementation(), "X");
    EXPECT_EQ(config.GetCodecId(), "CODEC_ID_ACELP.KELVIN");

    EXPECT_TRUE(CodecConfig("").IsEmpty());
    EXPECT_EQ(CodecConfig("").GetCoderType(), CoderType::None);
    EXPECT_EQ(CodecConfig().GetID(), "");
}

TEST(CodecConfig, RefusesOtherTexts) {
    for (const char* id :
         {" ", ".", "..", "Decoder", "Decoder.X", "Decoder..C", "Decoder.X.", "decoder.X.C",
          "Coder.X.C", "Decoder.A B.C", "Decoder.A:B.C", "Decoder.A,B.C", "Decoder.X.C,D"}) {
        try {
            const CodecConfig config(id);
            ADD_FAILURE() << id << " gives " << config.GetID();
        } catch (const Exception& e) {
            EXPECT_NE(std::string(e.what()).find(id), std::string::npos);
        }
    }
}

TEST(CheckType, KnowsThreeTexts) {
    EXPECT_EQ(CheckType("plugins"), CheckType::Plugins);
    EXPECT_EQ(CheckType("codecs"), CheckType::Codecs);
    EXPECT_EQ(CheckType("all"), CheckType::All);
    EXPECT_THROW(CheckType("All"), Exception);
    EXPECT_NE(CheckType(), CheckType::Plugins);
}

TEST(BrokenPlugins, SplitsAndTrims) {
    BrokenPlugins plugins("alpha, beta ,,");
    plugins.Add("\tgamma,alpha");
    plugins.Add("");
    EXPECT_EQ(static_cast<const std::vector<std::string>&>(plugins),
              (std::vector<std::string>{"alpha", "beta", "gamma", "alpha"}));
    EXPECT_TRUE(plugins);
    EXPECT_FALSE(BrokenPlugins(" , "));
}

TEST(ModuleOptions, FlattensInKeyOrder) {
    EXPECT_EQ(ModuleOptionsToBlackPluginList({{"Plugins.B", {"c"}}, {"Plugins.A", {"b", "a"}}}),
              (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_EQ(RemoveFormatType("Codecs.Decoder.X", FormatType::Codecs), "Decoder.X");
    EXPECT_EQ(RemoveFormatType("Codecs.Decoder.X", FormatType::Plugins), "Codecs.Decoder.X");
}

TEST(StatisticInfo, IsOneLineOfJson) {
    StatisticInfo info;
    EXPECT_EQ(std::string(info), "{}");
    info["b"]["2"] = "two\nlines \"\xC3\xA4\" \xFF";
    info["b"]["1"] = "";
    StatisticInfo other;
    other["b"]["3"] = "replaced";
    other["a"];
    StatisticInfo sum = info;
    sum.Add(other);
    EXPECT_EQ(std::string(info),
              "{\"b\":{\"1\":\"\",\"2\":\"two\\nlines \\\"\xC3\xA4\\\" \xEF\xBF\xBD\"}}");
    EXPECT_EQ(std::string(sum), R"({"a":{},"b":{"3":"replaced"}})");
}

TEST(EntryWrapper, HandsOverNarrowArguments) {
    wchar_t program[] = L"Assayer";
    wchar_t argument[] = L"\u20AC\xDCFF";
    wchar_t* argv[] = {program, argument, nullptr};
    const int result = EntryWrapperWchar(2, argv, [](int argc, char** narrow) {
        EXPECT_EQ(argc, 2);
        EXPECT_STREQ(narrow[1], "\xE2\x82\xAC\xFF");
        EXPECT_EQ(narrow[2], nullptr);
        return 9;
    });
    EXPECT_EQ(result, 9);
}

}  // namespace
}  // namespace Tarnex::Core::Utils
