#include <gtest/gtest.h>
#include <sys/stat.h>

#include <boost/filesystem.hpp>
#include <boost/filesystem/string_file.hpp>
#include <cstdlib>
#include <map>
#include <set>

#include "collect/Installation.h"
#include "core/support/Exception.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

const ModuleKind* const EFFECT = &MODULE_KINDS[0];
const ModuleKind* const FILTER = &MODULE_KINDS[1];
const std::map<const ModuleKind*, const char*> FILE_OF_KIND{{EFFECT, FILE_f0r_get_plugin_info},
                                                            {FILTER, FILE_ladspa_descriptor},
                                                            {&BUNDLED, FILE_lv2_lib_descriptor},
                                                            {nullptr, FILE_unknown_symbol}};

class CollectTest : public testing::Test {
protected:
    CollectTest() { fs::create_directories(app), fs::create_directories(folder / "below"); }
    ~CollectTest() override { fs::remove_all(root); }

    void Put(const std::string& name, const ModuleKind* kind) {
        fs::copy_file(FILE_OF_KIND.at(kind), folder / name, fs::copy_options::overwrite_existing);
    }
    void PutBundle(const std::string& name, const std::string& manifest,
                   const std::vector<std::string>& files = {}) {
        fs::create_directory(folder / name);
        fs::save_string_file(folder / name / "manifest.ttl",
                             "@prefix l: <http://lv2plug.in/ns/lv2core#> .\n"
                             "@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .\n" +
                                 manifest);
        for (const std::string& file : files) {
            Put((fs::path(name) / file).string(), &BUNDLED);
        }
    }
    void PutDamaged(const std::string& name, std::size_t offset, char byte, std::size_t size) {
        std::string bytes;
        fs::load_string_file(FILE_OF_KIND.at(EFFECT), bytes);
        bytes.at(offset) = byte;
        fs::save_string_file(folder / name, bytes.substr(0, size));
    }
    Findings Find(const ModuleKind* kind = nullptr) { return FindModules({{folder, kind}}, app); }
    Changes Update() { return UpdateInstallation(app, Find().modules); }
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

    std::map<std::string, std::string> seen;
    const Findings findings = Find();
    for (const FoundModule& module : findings.modules) {
        seen[module.path.filename().string()] = module.kind->factory;
    }
    for (const LeftOut& leftOut : findings.leftOut) {
        seen[leftOut.path.filename().string()] = leftOut.reason;
    }
    const std::map<std::string, std::string> expected{
        {"effect.so", "EffectFactory"},
        {"filter.so", "FilterFactory"},
        {"none.so", "exports none of the known entry points"},
        {"cut.so", "exports none of the known entry points"},
        {"machine.so", "an ELF file for another machine"},
        {"program.so", "an ELF file, but not a shared object"},
        {"text.so", "not an ELF file"},
        {"same.so", "the same file as " + (folder / "effect.so").string()},
        {"gone.so", "No such file or directory"},
        {"pipe.so", "not a regular file"}};
    EXPECT_EQ(seen, expected);
}

TEST_F(CollectTest, ModulesWithoutEntryPointAreOfTheirFoldersKind) {
    Put("filter.so", FILTER);
    Put("none.so", nullptr);
    const Findings findings = Find(EFFECT);
    ASSERT_EQ(findings.modules.size(), 2U);
    EXPECT_EQ(findings.modules[0].kind, FILTER);
    EXPECT_EQ(findings.modules[1].kind, EFFECT);
}

TEST_F(CollectTest, OnlyPluginBinariesOfBundlesAreFound) {
    PutBundle("one.lv2",
              "<urn:a> a l:Plugin ; l:binary <plug%20in.so> . <urn:b> l:binary <./plug%20in.so> ."
              "<urn:c> a ui:X11UI ; l:binary <window.so> . <urn:d> ui:binary <old-window.so> .",
              {"plug in.so", "window.so", "old-window.so", "unnamed.so"});
    PutBundle("two", "<urn:a> l:binary <a.so> . <urn:b> l:binary <b.so> .", {"a.so", "b.so"});
    PutBundle("presets.lv2", "<urn:a> a <http://lv2plug.in/ns/ext/presets#Preset> .");
    PutBundle("behind-link.lv2", "<urn:a> l:binary <a.so> .", {"a.so"});
    fs::rename(folder / "behind-link.lv2", root / "linked.lv2");
    fs::create_symlink("../linked.lv2", folder / "link.lv2");
    PutBundle("gone.lv2", "<urn:a> l:binary <a.so> .");
    PutBundle("elsewhere.lv2",
              "<urn:a> l:binary <../two/a.so>, <own.so>, <http://host/a.so>, \"text.so\" .",
              {"own.so"});
    PutBundle("text.lv2", "<urn:a> l:binary <a.so> .\nThis isn't Turtle.\n", {"a.so"});
    PutBundle("undefined.lv2", "<urn:a> lv2:binary <a.so> .", {"a.so"});
    fs::create_directory(folder / "empty.lv2");

    const Findings findings = Find();
    std::set<std::string> names;
    for (const FoundModule& module : findings.modules) {
        EXPECT_EQ(module.kind, &BUNDLED);
        names.insert(module.name);
    }
    EXPECT_EQ(names, (std::set<std::string>{"one", "two.a", "two.b", "link", "elsewhere.own"}));
    std::multimap<std::string, std::string> reasons;
    for (const LeftOut& leftOut : findings.leftOut) {
        reasons.emplace(leftOut.path.lexically_relative(folder).string(), leftOut.reason);
    }
    const std::string elsewhere = "its manifest names a file outside the bundle: ";
    const std::multimap<std::string, std::string> expected{
        {"elsewhere.lv2", elsewhere + (folder / "two/a.so").string()},
        {"elsewhere.lv2", elsewhere + "http://host/a.so"},
        {"elsewhere.lv2", elsewhere + "text.so"},
        {"empty.lv2", "the bundle has no manifest.ttl"},
        {"gone.lv2/a.so", "No such file or directory"},
        {"text.lv2", "its manifest.ttl isn't Turtle: line 4: bad verb"},
        {"undefined.lv2", "its manifest.ttl isn't Turtle: undefined prefix of lv2:binary"}};
    EXPECT_EQ(reasons, expected);
}

TEST_F(CollectTest, UpdatesOnlyItsOwnEntries) {
    fs::save_string_file(
        app / "plugins.list",
        "\xEF\xBB\xBF"
        "EffectFactory: put\n# kept\r\nCodecFactory: Ours, -\n EffectFactory : dead, moved\n");
    fs::save_string_file(app / "put.so", "put here by hand");
    fs::create_symlink("nowhere", app / "dead.so");
    fs::create_symlink("nowhere", app / "moved.so");
    fs::create_symlink("nowhere", app / "unlisted.so");
    Put("moved.so", EFFECT);
    Put("new.so", EFFECT);
    Put("filter.so", FILTER);
    const Changes changes = Update();
    EXPECT_EQ(changes.linked, (std::vector<std::string>{"filter", "moved", "new"}));
    EXPECT_EQ(changes.removed, std::vector<std::string>{"dead"});
    EXPECT_EQ(ReadList(),
              "# kept\r\nCodecFactory: Ours, -\nAnalyzerFactory:\n"
              "EffectFactory: moved, new, put\nFilterFactory: filter\n");
    EXPECT_FALSE(fs::is_symlink(app / "dead.so"));
    EXPECT_TRUE(fs::is_symlink(app / "unlisted.so"));

    const Changes again = Update();
    EXPECT_FALSE(again.listWritten || !again.linked.empty() || !again.removed.empty());

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
}

TEST(UsualFoldersTest, AVariableReplacesTheUsualOnes) {
    setenv("VAMP_PATH", "/one::/two", 1);
    std::vector<fs::path> paths;
    for (const SearchFolder& folder : GetUsualFolders()) {
        if (folder.kind->factory == "AnalyzerFactory") {
            paths.push_back(folder.path);
        }
    }
    unsetenv("VAMP_PATH");
    EXPECT_EQ(paths, (std::vector<fs::path>{"/one", "/two"}));
}

}  // namespace
}  // namespace Tarnex::Collect
