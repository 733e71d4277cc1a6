#include "support/ListFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/support/BrokenCodecs.h"
#include "core/support/Exception.h"
#include "core/support/ModuleOptions.h"

namespace Tarnex::Core::Utils {
namespace {

OptionLists Read(const std::string& text) {
    std::istringstream source(text);
    return ReadList(source, "list", [](const std::string& key) { return key != "bad"; });
}

TEST(ListFile, ReadsLines) {
    struct Case {
        std::string text;
        OptionLists lists;
    };
    const Case cases[] = {
        {"", {}},
        {"\n \t\r\n# a: b\n", {}},
        {"a: x, y", {{"a", {"x", "y"}}}},
        {"\xEF\xBB\xBF"
         "a:x\r\nb:y\r\n",
         {{"a", {"x"}}, {"b", {"y"}}}},
        {" a :\t x ,, y z, \n", {{"a", {"x", "y z"}}}},
        {"a: x\nb: y\na: x, z\n", {{"a", {"x", "x", "z"}}, {"b", {"y"}}}},
        {"a:\n", {{"a", {}}}},
        {"a: b: c\n", {{"a", {"b: c"}}}},
        {"\xC3\xA4: \xC3\xB6\n", {{"\xC3\xA4", {"\xC3\xB6"}}}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Read(c.text), c.lists) << c.text;
    }
}

std::string FailureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& e) {
        return e.what();
    }
    return "no exception";
}

TEST(ListFile, NamesTheLineAtFault) {
    const std::pair<const char*, const char*> cases[] = {
        {"no colon", "list, line 1: no colon in \"no colon\""},
        {"a: x\n\nbad: y\n", "list, line 3: unknown key \"bad\""},
        {"# \xFF\n", "list, line 1: not UTF-8"},
        {"a: x\n\xEF\xBB\xBF: y\nbad:\n", "list, line 3: unknown key \"bad\""},
    };
    for (const auto& [text, failure] : cases) {
        EXPECT_EQ(FailureOf([&] { Read(text); }), failure);
    }
}

TEST(ListFile, NamesTheFileAtFault) {
    const std::string directory = testing::TempDir();
    const std::string missing = directory + "missing.list";
    EXPECT_EQ(FailureOf([&] { LoadFromFile(directory, FormatType::Codecs); }),
              "\"" + directory + "\", line 1: can't be read: Is a directory");
    EXPECT_EQ(FailureOf([&] { LoadFromFile(missing, FormatType::Codecs); }),
              "\"" + missing + "\", line 1: can't be opened: No such file or directory");
}

TEST(ListFile, KnowsTheKeysOfItsForm) {
    const std::string path = testing::TempDir() + "keys.list";
    const auto loads = [&path](const std::string& key, FormatType format) {
        std::ofstream(path) << key << ": value\n";
        try {
            return LoadFromFile(path, format) == OptionLists{{key, {"value"}}};
        } catch (const Exception&) {
            return false;
        }
    };
    for (const char* key : {"Codecs.Decoder.FFMPEG_IMPL", "Codecs.Encoder.X"}) {
        EXPECT_TRUE(loads(key, FormatType::Codecs)) << key;
        EXPECT_FALSE(loads(key, FormatType::Plugins)) << key;
    }
    EXPECT_TRUE(loads("Plugins.Broken", FormatType::Plugins));
    for (const char* key : {"Codecs.Decoder.", "Codecs.Decoder", "Codecs.decoder.X",
                            "Codecs.Coder.X", "Codecs.Decoder.A B", "Codecs.Decoder.A.B",
                            "Plugins.", "Plugins.A B", "plugins.A", "Broken", ""}) {
        EXPECT_FALSE(loads(key, FormatType::Codecs)) << key;
        EXPECT_FALSE(loads(key, FormatType::Plugins)) << key;
    }
    std::filesystem::remove(path);
}

TEST(BrokenCodecs, TakesTheTextOfItsLists) {
    const OptionLists lists = {{"Codecs.Decoder.X", {"CODEC_ID_A", "CODEC_ID_B"}},
                               {"Codecs.Encoder.X", {"CODEC_ID_A"}}};
    const std::string text = ModuleOptionsToString(lists, FormatType::Codecs);
    EXPECT_EQ(text,
              "Codecs.Decoder.X: CODEC_ID_A, CODEC_ID_B\n"
              "Codecs.Encoder.X: CODEC_ID_A\n");
    const BrokenCodecs broken(text);
    EXPECT_TRUE(broken);
    EXPECT_EQ(static_cast<const CodecLists&>(broken), lists);

    EXPECT_FALSE(BrokenCodecs(""));
    EXPECT_FALSE(BrokenCodecs("Codecs.Decoder.X:\n"));
    EXPECT_THROW(BrokenCodecs("Codecs.Decoder.X CODEC_ID_A"), Exception);
    EXPECT_THROW(ModuleOptionsToString({{"Plugins.A", {"b"}}}, FormatType::Codecs), Exception);
}

}  // namespace
}  // namespace Tarnex::Core::Utils
