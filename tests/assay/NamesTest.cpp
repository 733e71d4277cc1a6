#include "assay/Names.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>

#include <boost/filesystem.hpp>
#include <fstream>

#include "parent/Check.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;
using Parent::ItemKind;

/// A folder with modules' files; removed afterwards.
class NamesTest : public testing::Test {
protected:
    NamesTest() {
        fs::create_directories(folder / "amp.lv2");
        std::ofstream(file.string()) << "";
        for (const char* name : {"curves", "lspEq", "lspGate", "LSPEQ", "amp"}) {
            Item& item = items.emplace_back();
            item.name = name;
        }
        items.back().file.emplace().path = fs::canonical(file).string();
        for (const char* name :
             {"Decoder.FFMPEG_IMPL.CODEC_ID_AAC", "Decoder.FFMPEG_IMPL.CODEC_ID_H265",
              "Encoder.MEDIA_FOUNDATION_IMPL.CODEC_ID_AAC"}) {
            const std::string text = name;
            Item& item = items.emplace_back();
            item.kind = ItemKind::Codec;
            item.name = text;
            item.coder = text.substr(0, 7);
            item.codec = text.substr(text.rfind('.') + 1);
            item.implementation = text.substr(8, text.rfind('.') - 8);
        }
        Item& exercise = items.emplace_back();
        exercise.kind = ItemKind::Exercise;
        exercise.name = "amp/mono";
        exercise.plugin = "amp";
        exercise.title = "Mono amplifier";
    }

    ~NamesTest() override { fs::remove_all(folder); }

    const fs::path folder = fs::temp_directory_path() / fs::unique_path();
    const fs::path file = folder / "amp.lv2/amp.so";
    std::vector<Item> items;
};

TEST_F(NamesTest, ManyWordsMeanAName) {
    struct Row {
        std::vector<Candidate> (*all)(const std::vector<Item>&);
        std::string word;
        std::string names;
    };
    const std::string aac = "Decoder.FFMPEG_IMPL.CODEC_ID_AAC";
    const std::string framework = "Encoder.MEDIA_FOUNDATION_IMPL.CODEC_ID_AAC";
    const Row rows[] = {{GetPlugins, "curves", "curves"},
                        {GetPlugins, " CURVES ", "curves"},
                        {GetPlugins, "lspEq", "lspEq"},
                        {GetPlugins, "lspeq", "lspEq LSPEQ"},
                        {GetPlugins, "LSP*", "lspEq lspGate LSPEQ"},
                        {GetPlugins, "lsp[eg]?t*", "lspGate"},
                        {GetPlugins, file.string(), "amp"},
                        {GetPlugins, file.parent_path().string(), "amp"},
                        {GetPlugins, (folder / "amp.lv2/../amp.lv2/amp.so").string(), "amp"},
                        {GetPlugins, (folder / "am").string(), ""},
                        {GetPlugins, "curve", ""},
                        {GetPlugins, "aac", ""},
                        {GetCodecs, "aac", "CODEC_ID_AAC"},
                        {GetCodecs, "CODEC_ID_AAC", "CODEC_ID_AAC"},
                        {GetCodecs, "hevc", "CODEC_ID_H265"},
                        {GetCodecs, "h26*", "CODEC_ID_H265"},
                        {GetImplementations, "gstreamer", "MEDIA_FOUNDATION_IMPL"},
                        {GetImplementations, "ffmpeg", "FFMPEG_IMPL"},
                        {GetImplementations, "media_foundation", "MEDIA_FOUNDATION_IMPL"},
                        {GetItems, "aac", aac + " " + framework},
                        {GetItems, "ffmpeg aac decoder", aac},
                        {GetItems, "amp", "amp"},
                        {GetItems, "AMP", "amp amp/mono"},
                        {GetItems, "mono amplifier", "amp/mono"}};
    for (const Row& row : rows) {
        EXPECT_EQ(fmt::to_string(fmt::join(FindNames(row.word, row.all(items)), " ")), row.names)
            << row.word;
    }
    EXPECT_THAT(FindNames({"amp", "curves", "cur*"}, GetPlugins(items), "plugin"),
                testing::ElementsAre("curves", "amp"));
}

TEST_F(NamesTest, AnUnknownNameGetsTheNearestFew) {
    const std::pair<const char*, const char*> rows[] = {
        {"curvs", "There is no plugin \"curvs\"; did you mean curves?"},
        {"lspGat", "There is no plugin \"lspGat\"; did you mean lspGate?"},
        {"lsp", "There is no plugin \"lsp\"; did you mean lspEq, lspGate or LSPEQ?"},
        {"cur", "There is no plugin \"cur\"; did you mean curves?"},
        {"something", "There is no plugin \"something\""},
        {"no*", "There is no plugin \"no*\""}};
    for (const auto& [word, text] : rows) {
        EXPECT_EQ(DescribeUnknown(word, GetPlugins(items), "plugin"), text);
        EXPECT_THROW(FindNames({"amp", word}, GetPlugins(items), "plugin"), UnknownName);
    }
    EXPECT_EQ(DescribeUnknown("hefc", GetCodecs(items), "codec"),
              "There is no codec \"hefc\"; did you mean CODEC_ID_H265?");
}

}  // namespace
}  // namespace Tarnex::Assay
