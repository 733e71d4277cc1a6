#include <gtest/gtest.h>
#include <lilv/lilv.h>
#include <sys/stat.h>

#include <boost/filesystem.hpp>
#include <boost/filesystem/string_file.hpp>
#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <thread>

#include "collect/Update.h"
#include "core/support/Exception.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

const ModuleKind* const EFFECT = &MODULE_KINDS[0];
const ModuleKind* const FILTER = &MODULE_KINDS[1];
const std::map<const ModuleKind*, const char*> FILE_OF_KIND{
    {EFFECT, FILE_f0r_get_plugin_info}, {FILTER, FILE_ladspa_descriptor},
    {&LV2, FILE_lv2_lib_descriptor},    {&CLAP, FILE_clap_entry},
    {&VST3, FILE_GetPluginFactory},     {nullptr, FILE_unknown_symbol}};

class CollectTest : public testing::Test {
protected:
    CollectTest() { fs::create_directories(app), fs::create_directories(folder / "below"); }
    ~CollectTest() override { fs::remove_all(root); }

    void Put(const std::string& name, const ModuleKind* kind) {
        fs::create_directories((folder / name).parent_path());
        fs::copy_file(FILE_OF_KIND.at(kind), folder / name, fs::copy_options::overwrite_existing);
    }
    void PutBundle(const std::string& name, const std::string& manifest,
                   const std::vector<std::string>& files = {}) {
        fs::create_directory(folder / name);
        PutTurtle(name + "/manifest.ttl", manifest);
        for (const std::string& file : files) {
            Put((fs::path(name) / file).string(), &LV2);
        }
    }
    void PutTurtle(const std::string& name, const std::string& text) {
        fs::save_string_file(folder / name,
                             "@prefix l: <http://lv2plug.in/ns/lv2core#> .\n"
                             "@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .\n"
                             "@prefix r: <http://www.w3.org/2000/01/rdf-schema#> .\n" +
                                 text);
    }
    void PutDamaged(const std::string& name, std::size_t offset, char byte, std::size_t size) {
        std::string bytes;
        fs::load_string_file(FILE_OF_KIND.at(EFFECT), bytes);
        bytes.at(offset) = byte;
        fs::save_string_file(folder / name, bytes.substr(0, size));
    }
    Findings Find(const ModuleKind* kind = nullptr) {
        ReadingCache cache(root / "cache");
        Findings findings = FindModules({{folder, kind}}, app, cache);
        cache.Save();
        return findings;
    }
    Changes Update() {
        const Installations::Installation installation(app);
        return UpdateInstallation(installation, Find().modules, record);
    }
    /// What was found, by path, and why the rest wasn't.
    std::map<std::string, std::string> Describe(const Findings& findings) {
        std::map<std::string, std::string> seen;
        for (const FoundModule& module : findings.modules) {
            seen[module.path.lexically_relative(folder).string()] =
                std::string(Installations::TraitsOf(module.kind->interface).name) + " " +
                module.name;
        }
        for (const LeftOut& leftOut : findings.leftOut) {
            seen[leftOut.path.lexically_relative(folder).string()] += leftOut.reason;
        }
        return seen;
    }
    std::string ReadList() {
        std::string text;
        fs::load_string_file(app / "plugins.list", text);
        return text;
    }
    std::string GetTarget(const std::string& name) {
        return fs::read_symlink(app / name).lexically_relative(folder).string();
    }

    const fs::path root = fs::canonical(fs::temp_directory_path()) / fs::unique_path();
    const fs::path app = root / "app";
    const fs::path folder = root / "modules";
    CollectRecord record;
};

TEST_F(CollectTest, KindsAndReasonsComeFromTheFileItself) {
    Put("effect.so", EFFECT);
    Put("below/filter.so", FILTER);
    Put("none.so", nullptr);
    Put("other.txt", EFFECT);
    PutDamaged("cut.so", 0, '\x7f', 1000);
    PutDamaged("machine.so", 18, 8, std::string::npos);
    PutDamaged("program.so", 16, 2, std::string::npos);
    PutDamaged("text.so", 0, '#', std::string::npos);
    fs::create_symlink("effect.so", folder / "same.so");
    fs::create_symlink("nowhere", folder / "gone.so");
    ASSERT_EQ(mkfifo((folder / "pipe.so").c_str(), 0600), 0);

    const std::map<std::string, std::string> expected{
        {"effect.so", "frei0r effect"},
        {"below/filter.so", "LADSPA filter"},
        {"none.so", "exports none of the known entry points"},
        {"cut.so", "exports none of the known entry points"},
        {"machine.so", "an ELF file for another machine"},
        {"program.so", "an ELF file, but not a shared object"},
        {"text.so", "not an ELF file"},
        {"same.so", "the same file as " + (folder / "effect.so").string()},
        {"gone.so", "No such file or directory"},
        {"pipe.so", "not a regular file"}};
    EXPECT_EQ(Describe(Find()), expected);
}

TEST_F(CollectTest, FilesAreWhatHostsOfTheirFolderTakeThemFor) {
    Put("both.clap", &CLAP);
    Put("both.so", FILTER);
    Put("none.so", nullptr);
    Put("clap.so", &CLAP);
    Put("below/data.so", nullptr);
    Put("below/deep.clap", nullptr);
    Put("single.vst3", &VST3);
    Put("both.vst3/Contents/" VST3_ARCHITECTURE "/both.so", &VST3);
    Put("both.vst3/Contents/" VST3_ARCHITECTURE "/other.so", &VST3);
    Put("other.vst3/Contents/pdp11-linux/other.so", &VST3);
    fs::create_directories(folder / "odd.vst3/Contents/" VST3_ARCHITECTURE "/odd.so");
    fs::create_symlink("..", folder / "below/circle");
    const std::string vst3 = "both.vst3/Contents/" VST3_ARCHITECTURE "/both.so";
    const std::string odd = "odd.vst3/Contents/" VST3_ARCHITECTURE "/odd.so";
    const std::string noBinary =
        "has no binary for this machine, Contents/" VST3_ARCHITECTURE "/other.so";
    const std::map<const ModuleKind*, std::map<std::string, std::string>> expected{
        {nullptr,
         {{"both.clap", "CLAP both"},
          {"both.so", "LADSPA both"},
          {"none.so", "exports none of the known entry points"},
          {"clap.so", "exports none of the known entry points"},
          {"below/data.so", "exports none of the known entry points"},
          {"below/deep.clap", "CLAP deep"},
          {"single.vst3", "VST3 single"},
          {vst3, "VST3 both"},
          {"other.vst3", noBinary},
          {odd, "not a regular file"}}},
        {FILTER,
         {{"both.clap", "not named as hosts of LADSPA want it"},
          {"both.so", "LADSPA both"},
          {"none.so", "LADSPA none"},
          {"clap.so", "LADSPA clap"},
          {"below/data.so", "deeper than hosts of LADSPA look"},
          {"below/deep.clap", "deeper than hosts of LADSPA look"},
          {"single.vst3", "not named as hosts of LADSPA want it"}}},
        {&CLAP,
         {{"both.clap", "CLAP both"},
          {"both.so", "not named as hosts of CLAP want it"},
          {"none.so", "not named as hosts of CLAP want it"},
          {"clap.so", "not named as hosts of CLAP want it"},
          {"below/data.so", "not named as hosts of CLAP want it"},
          {"below/deep.clap", "CLAP deep"},
          {"single.vst3", "not named as hosts of CLAP want it"}}},
        {&VST3,
         {{"both.clap", "not named as hosts of VST3 want it"},
          {"both.so", "not named as hosts of VST3 want it"},
          {"none.so", "not named as hosts of VST3 want it"},
          {"clap.so", "not named as hosts of VST3 want it"},
          {"below/data.so", "not named as hosts of VST3 want it"},
          {"below/deep.clap", "not named as hosts of VST3 want it"},
          {"single.vst3", "VST3 single"},
          {vst3, "VST3 both"},
          {"other.vst3", noBinary},
          {odd, "not a regular file"}}}};
    for (const auto& [kind, seen] : expected) {
        auto found = Describe(Find(kind));
        if (kind != &VST3 && kind != nullptr) {
            std::erase_if(found, [](const auto& file) {
                return file.first.find(".vst3/") != std::string::npos;
            });
        }
        EXPECT_EQ(found, seen) << (kind == nullptr ? "any" : kind->libFolder);
    }
}

TEST_F(CollectTest, BundlesHoldWhatHostsFind) {
    PutBundle("one.lv2",
              "<urn:a> a l:Plugin ; l:binary <plug%20in.so> . <urn:b> l:binary <untyped.so> ."
              "<urn:c> a ui:X11UI ; l:binary <window.so> . <urn:d> ui:binary <old-window.so> .",
              {"plug in.so", "unnamed.so"});
    fs::copy_file(FILE_lv2ui_descriptor, folder / "one.lv2/window.so");
    PutBundle("two",
              "<urn:a> a l:Plugin ; l:binary <a.so> . <urn:b> a l:Plugin ; r:seeAlso <b.ttl>, "
              "<none.ttl> .",
              {"a.so"});
    PutTurtle("two/b.ttl", "<urn:b> l:binary <b.so> . <urn:c> l:binary <c.so> .");
    Put("below/elsewhere.so", &LV2);
    fs::create_symlink("../below/elsewhere.so", folder / "two/b.so");
    PutBundle("presets.lv2",
              "<urn:a> a <http://lv2plug.in/ns/ext/presets#Preset> ; r:seeAlso <none.ttl> .");
    PutBundle("linked.lv2", "<urn:a> a l:Plugin ; l:binary <a.so> .", {"a.so"});
    fs::rename(folder / "linked.lv2", root / "linked.lv2");
    fs::create_symlink("../linked.lv2", folder / "link.lv2");
    PutBundle("gone.lv2", "<urn:a> a l:Plugin ; l:binary <a.so> .");
    PutBundle("odd.lv2", "<urn:a> a l:Plugin ; l:binary <http://host/a.so> . <urn:b> a l:Plugin .");
    PutBundle("text.lv2", "<urn:a> a l:Plugin .\nThis isn't Turtle.\n", {"a.so"});
    PutBundle("undefined.lv2", "<urn:a> a lv2:Plugin .");
    fs::create_directory(folder / "empty.lv2");
    const std::map<std::string, std::string> expected{
        {"one.lv2/plug in.so", "LV2 one"},
        {"one.lv2/unnamed.so", "no binary of a plugin of its LV2 bundle"},
        {"one.lv2/window.so", "a user interface of an LV2 bundle"},
        {"two", "its none.ttl No such file or directory"},
        {"two/a.so", "LV2 two.a"},
        {"two/b.so", "LV2 two.b"},
        {"below/elsewhere.so", "deeper than hosts of LV2 look"},
        {"link.lv2/a.so", "LV2 link"},
        {"gone.lv2/a.so", "No such file or directory"},
        {"odd.lv2",
         "no binary is named for its plugin urn:b"
         "names as a binary what isn't a file: http://host/a.so"},
        {"text.lv2", "its manifest.ttl isn't Turtle: line 5: bad verb"},
        {"undefined.lv2", "its manifest.ttl isn't Turtle: undefined prefix of lv2:Plugin"},
        {"empty.lv2", "the bundle has no manifest.ttl"}};
    EXPECT_EQ(Describe(Find(&LV2)), expected);
}

TEST_F(CollectTest, WhatChangedIsReadAgain) {
    Put("changed.so", EFFECT);
    PutBundle("one.lv2", "<urn:a> a l:Plugin ; r:seeAlso <a.ttl> .", {"a.so", "b.so"});
    PutTurtle("one.lv2/a.ttl", "<urn:a> l:binary <a.so> .");
    for (int i = 0; i < 2; ++i) {  // once anew, once from the cache
        const auto found = Describe(Find());
        EXPECT_EQ(found.at("changed.so"), "frei0r changed");
        EXPECT_EQ(found.at("one.lv2/a.so"), "LV2 one");
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
    }
    Find();
    ASSERT_GT(fs::file_size(root / "cache"), 500U);
    Put("changed.so", FILTER);
    Put("below/new.so", FILTER);
    PutTurtle("one.lv2/a.ttl", "<urn:a> l:binary <b.so> .");
    const auto found = Describe(Find());
    EXPECT_EQ(found.at("changed.so"), "LADSPA changed");
    EXPECT_EQ(found.at("below/new.so"), "LADSPA new");
    EXPECT_EQ(found.at("one.lv2/b.so"), "LV2 one");

    std::string bytes;
    fs::load_string_file(root / "cache", bytes);
    for (std::size_t size = 0; size < bytes.size(); size += 7) {
        fs::save_string_file(root / "cache", bytes.substr(0, size));
        ASSERT_EQ(Describe(Find()), found) << "cut at " << size;
    }
}

TEST_F(CollectTest, UpdatesOnlyItsOwnEntries) {
    fs::save_string_file(app / "plugins.list",
                         "\xEF\xBB\xBF"
                         "EffectFactory: put\n# kept\r\nCodecFactory: Ours, -\n EffectFactory : "
                         "dead, byhand, moved\n");
    fs::save_string_file(app / "put.so", "put here by hand");
    fs::create_symlink("nowhere", app / "dead.so");
    fs::create_symlink("elsewhere", app / "byhand.so");
    fs::create_symlink("nowhere", app / "moved.so");
    fs::create_symlink("nowhere", app / "unlisted.so");
    record.links = {{"dead", "nowhere"}, {"moved", "nowhere"}, {"byhand", "before"}};
    Put("moved.so", EFFECT);
    Put("new.so", EFFECT);
    Put("filter.so", FILTER);
    const Changes changes = Update();
    EXPECT_EQ(changes.linked, (std::vector<std::string>{"filter", "moved", "new"}));
    EXPECT_EQ(changes.removed, std::vector<std::string>{"dead"});
    EXPECT_EQ(ReadList(),
              "# kept\r\nCodecFactory: Ours, -\n"
              "EffectFactory: byhand, moved, new, put\nFilterFactory: filter\n");
    EXPECT_FALSE(fs::is_symlink(app / "dead.so"));
    EXPECT_TRUE(fs::is_symlink(app / "unlisted.so"));

    EXPECT_TRUE(fs::is_symlink(app / "byhand.so"));
    EXPECT_TRUE(Update().IsEmpty());
    EXPECT_EQ(*ReadCollectRecord(Installations::Installation(app)), record);
    fs::remove(folder / "new.so");
    EXPECT_EQ(Update().removed, std::vector<std::string>{"new"});

    fs::save_string_file(app / "plugins.list", "EffectFactory: ../outside\n");
    EXPECT_THROW(Update(), Exception);
}

TEST_F(CollectTest, NamesAreUniqueAndStay) {
    fs::save_string_file(app / "Ours.so", "a module of the program's own");
    Put("Ours.so", EFFECT);
    Put("odd n\xC3\xA4me,.so", EFFECT);
    Put("-.so", FILTER);
    Put("twice.so", FILTER);
    EXPECT_EQ(Update().renamed.size(), 2U);
    EXPECT_EQ(GetTarget("Ours-2.so"), "Ours.so");
    EXPECT_EQ(GetTarget("odd_n__me_.so"), "odd n\xC3\xA4me,.so");
    EXPECT_EQ(GetTarget("--2.so"), "-.so");

    Put("below/twice.so", FILTER);
    Update();
    EXPECT_EQ(GetTarget("twice.so"), "twice.so") << "a newcomer took the name";
    EXPECT_EQ(GetTarget("twice-2.so"), "below/twice.so");

    Put("one.clap", &CLAP);
    Update();
    Put("below/one.clap", &CLAP);
    Update();
    EXPECT_EQ(GetTarget("one.clap.so"), "one.clap");
    EXPECT_EQ(GetTarget("one-2.clap.so"), "below/one.clap");
}

TEST(UsualFoldersTest, VariablesAreWhatHostsTakeThemFor) {
    const fs::path home = fs::temp_directory_path() / fs::unique_path();
    const fs::path trusted = home / "trusted";
    for (const char* folder :
         {"trusted", ".lv2", ".clap", ".vst3", ".ladspa", ".frei0r-1/lib", "vamp"}) {
        fs::create_directories(home / folder);
    }
    fs::save_string_file(trusted / TRUSTED_MARK, "");
    const std::string homeBefore = std::getenv("HOME");
    const std::map<std::string, std::string> values{
        {"HOME", home.string()},
        {"VAMP_PATH", "/one::" + trusted.string() + ":/two"},
        {"LADSPA_PATH", trusted.string()},
        {"LV2_PATH", "~/some:/three"},
        {"CLAP_PATH", "/four"},
        {"FREI0R_PATH", ""}};
    for (const auto& [name, value] : values) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    std::map<std::string_view, std::vector<fs::path>> found;
    for (const SearchFolder& folder : GetUsualFolders()) {
        found[folder.kind->libFolder].push_back(folder.path);
    }
    for (const auto& variable : values) {
        unsetenv(variable.first.c_str());
    }
    setenv("HOME", homeBefore.c_str(), 1);
    EXPECT_EQ(found["vamp"], (std::vector<fs::path>{"/one", "/two"}));
    EXPECT_EQ(found["lv2"], (std::vector<fs::path>{home / "some", "/three"}));
    EXPECT_EQ(found["ladspa"].front(), home / ".ladspa");
    EXPECT_EQ(found["frei0r-1"].front(), home / ".frei0r-1/lib");
    EXPECT_EQ(found["vst3"].front(), home / ".vst3");
    ASSERT_GE(found["clap"].size(), 2U);
    EXPECT_EQ(found["clap"][0], "/four");
    EXPECT_EQ(found["clap"][1], home / ".clap");
    fs::remove_all(home);
}

/// The library that hosts use is the authority.
TEST(UsualFoldersTest, ThisMachinesLv2ModulesAreThoseThatHostsSee) {
    const std::unique_ptr<LilvWorld, decltype(&lilv_world_free)> world(lilv_world_new(),
                                                                       &lilv_world_free);
    lilv_world_load_all(world.get());
    const LilvPlugins* const plugins = lilv_world_get_all_plugins(world.get());
    std::set<fs::path> expected;
    LILV_FOREACH(plugins, i, plugins) {
        const LilvNode* binary = lilv_plugin_get_library_uri(lilv_plugins_get(plugins, i));
        char* const path = binary == nullptr ? nullptr : lilv_node_get_path(binary, nullptr);
        if (path != nullptr && fs::exists(path)) {
            expected.insert(fs::canonical(path));
        }
        lilv_free(path);
    }
    std::vector<SearchFolder> folders = GetUsualFolders();
    std::erase_if(folders, [](const SearchFolder& folder) { return folder.kind != &LV2; });
    ReadingCache cache("");
    std::set<fs::path> found;
    for (const FoundModule& module : FindModules(folders, "/", cache).modules) {
        found.insert(fs::canonical(module.path));
    }
    EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace Tarnex::Collect
