#include "assay/List.h"

#include <gmock/gmock.h>

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;

Item MakePlugin(const std::string& name, const std::string& interface, const std::string& factory,
                Verdict verdict = Verdict::NotReached) {
    Item item;
    item.name = name;
    item.interface = interface;
    item.factory = factory;
    item.verdict = verdict;
    return item;
}

Item MakeExercise(const std::string& plugin, const std::string& id) {
    Item item;
    item.kind = Parent::ItemKind::Exercise;
    item.name = plugin + "/" + id;
    item.plugin = plugin;
    item.id = id;
    return item;
}

Item MakeUnlisted(const std::string& plugin, const std::string& reason) {
    Item item = MakeExercise(plugin, "");
    item.name = plugin;
    item.verdict = Verdict::Crashed;
    item.reason = reason;
    return item;
}

Item MakeCodec(const std::string& coder, const std::string& codec) {
    Item item;
    item.kind = Parent::ItemKind::Codec;
    item.coder = coder;
    item.implementation = "I";
    item.codec = codec;
    item.name = coder + ".I." + codec;
    return item;
}

Inventory MakeInventory() {
    return {
        "/app",
        {MakePlugin("OglManager", "own", "OglManager"),
         MakePlugin("gone", "", "FilterFactory", Verdict::Missing),
         MakePlugin("beat", "Vamp", "AnalyzerFactory"), MakePlugin("a", "CLAP", "FilterFactory"),
         MakePlugin("cmt", "LADSPA", "FilterFactory"), MakePlugin("b", "CLAP", "FilterFactory"),
         MakePlugin("curves", "frei0r", "EffectFactory"),
         MakePlugin("wave", "own", "ParserFactory")},
        {MakeExercise("beat", "onsets"), MakeUnlisted("b", "SIGSEGV"), MakeExercise("cmt", "cmt"),
         MakeExercise("cmt", "delay"), MakeExercise("curves", "curves")},
        {MakeCodec("Decoder", "A"), MakeCodec("Decoder", "B"), MakeCodec("Encoder", "A")},
        {}};
}

TEST(ListTest, GroupsPluginsByInterfaceAndCodecsByCoder) {
    EXPECT_THAT(
        Describe(MakeInventory()),
        testing::ElementsAre("frei0r (EffectFactory)", "  curves", "LADSPA (FilterFactory)",
                             "  cmt", "    cmt", "    delay", "CLAP (FilterFactory)", "  a", "  b",
                             "    can't be listed: SIGSEGV", "Vamp (AnalyzerFactory)", "  beat",
                             "    onsets", "own (OglManager)", "  OglManager",
                             "own (ParserFactory)", "  wave", "unknown (FilterFactory)",
                             "  gone (no file)", "Decoder.I", "  A", "  B", "Encoder.I", "  A"));
}

TEST(ListTest, GivesItemsInTheReportsForm) {
    Inventory inventory = MakeInventory();
    Reports::Json json = ToJson(inventory);
    EXPECT_EQ(json["complete"], true);
    ASSERT_EQ(json["items"].size(), 16U);
    EXPECT_EQ(json["items"][8], Reports::Json({{"kind", "exercise"},
                                               {"name", "beat/onsets"},
                                               {"plugin", "beat"},
                                               {"id", "onsets"},
                                               {"verdict", "not-reached"}}));
    inventory.problems = {"no codecs"};
    json = ToJson(inventory);
    EXPECT_EQ(json["complete"], false);
    EXPECT_EQ(json["problems"], Reports::Json({"no codecs"}));
}

}  // namespace
}  // namespace Tarnex::Assay
