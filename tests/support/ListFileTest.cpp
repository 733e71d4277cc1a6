#include "support/ListFile.h"

#include <gtest/gtest.h>

#include <fstream>

#include "core/support/BrokenCodecs.h"
#include "core/support/Exception.h"
#include "core/support/ModuleOptions.h"

namespace Tarnex::Core::Utils {
namespace {

/// The lists in the file as text, or the failure text without the file's name.
std::string Load(const std::string& content, FormatType format) {
    const std::string path = testing::TempDir() + "test.list";
    std::ofstream(path) << content;
    try {
        return ModuleOptionsToString(LoadFromFile(path, format), format);
    } catch (const Exception& e) {
        const std::string name = '"' + path + "\", ";
        EXPECT_EQ(std::string(e.what()).substr(0, name.size()), name);
        return std::string(e.what()).substr(name.size());
    }
}

TEST(ListFile, ReadsLinesAndNamesTheOneAtFault) {
    const std::pair<const char*, const char*> cases[] = {
        {"\n \t\r\n# Plugins.A: b\n", ""},
        {"Plugins.A: x, y", "Plugins.A: x, y\n"},
        {"\xEF\xBB\xBFPlugins.B:x\r\n Plugins.A :\t y ,, z z,\n",
         "Plugins.A: y, z z\nPlugins.B: x\n"},
        {"Plugins.A: x\nPlugins.B: y\nPlugins.A: x, \xC3\xB6\n",
         "Plugins.A: x, x, \xC3\xB6\nPlugins.B: y\n"},
        {"Plugins.A:\n", "Plugins.A: \n"},
        {"Plugins.A b", "line 1: no colon in \"Plugins.A b\""},
        {"Plugins.A: x\n\nPlugins: y\n", "line 3: unknown key \"Plugins\""},
        {"# a\n# \xFF\n", "line 2: not UTF-8"},
    };
    for (const auto& [content, result] : cases) {
        EXPECT_EQ(Load(content, FormatType::Plugins), result) << content;
    }
}

TEST(ListFile, AcceptsOnlyTheKeysOfItsFormat) {
    const auto takes = [](const std::string& key, FormatType format) {
        return Load(key + ": v", format) == key + ": v\n";
    };
    EXPECT_TRUE(takes("Codecs.Decoder.FFMPEG_IMPL", FormatType::Codecs));
    EXPECT_TRUE(takes("Codecs.Encoder.X", FormatType::Codecs));
    for (const char* key : {"Codecs.Decoder.", "Codecs.decoder.X", "Codecs.Coder.X", "Plugins.A",
                            "Codecs.Decoder.A B", "Codecs.Decoder.A.B", ""}) {
        EXPECT_FALSE(takes(key, FormatType::Codecs)) << key;
    }
    for (const char* key : {"Plugins.", "Plugins.My list"}) {
        EXPECT_TRUE(takes(key, FormatType::Plugins)) << key;
    }
    for (const char* key : {"Plugins", "plugins.A", " Plugins A", "Codecs.Decoder.X"}) {
        EXPECT_FALSE(takes(key, FormatType::Plugins)) << key;
    }
}

TEST(BrokenCodecs, ParsesTheTextOfItsLists) {
    const OptionLists lists = {{"Codecs.Decoder.X", {"A", "B"}}, {"Codecs.Encoder.X", {"A"}}};
    const BrokenCodecs broken(ModuleOptionsToString(lists, FormatType::Codecs));
    EXPECT_TRUE(broken);
    EXPECT_EQ(static_cast<const CodecLists&>(broken), lists);
    EXPECT_FALSE(BrokenCodecs(""));
    EXPECT_FALSE(BrokenCodecs("Codecs.Decoder.X:\n"));
    EXPECT_THROW(BrokenCodecs("Codecs.Decoder.X A"), Exception);
    EXPECT_THROW(ModuleOptionsToString(lists, FormatType::Plugins), Exception);
}

}  // namespace
}  // namespace Tarnex::Core::Utils
