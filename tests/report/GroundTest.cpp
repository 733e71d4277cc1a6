// What a verdict rests on: each thing changed by itself, and each thing that isn't part of it.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <boost/filesystem.hpp>
#include <cstdlib>
#include <fstream>
#include <functional>

#include "installation/ModuleFile.h"
#include "report/Capture.h"
#include "report/CarryOver.h"
#include "report/Trust.h"

namespace Tarnex::Reports {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;
using Parent::ItemKind;
using Parent::Verdict;
using Names = std::set<std::string>;

/// Any program.
const fs::path OTHER = fs::canonical("/bin/true");

/// An installation with a report of it.
class Fixture {
public:
    /// `withCache`: the loader has a cache of its own, which names what lies in the folder of
    /// libraries.
    explicit Fixture(bool withCache = false) : withCache(withCache) {
        fs::create_directories(app / "resources/codecSamples");
        fs::create_directories(libraries);
        for (const char* name : {"Assayer", "assayer-list", "assayer-exercise"}) {
            fs::copy_file(OTHER, app / name);
        }
        std::ofstream((app / "plugins.list").native())
            << "FilterFactory: amp, beside, slow, odd\nCodecFactory: Codecs\n";
        for (const char* name : {"amp", "beside", "slow", "odd", "Codecs"}) {
            fs::copy_file(OTHER, app / (std::string(name) + ".so"));
        }
        fs::copy_file(OTHER, libraries / "libone.so.1");
        fs::copy_file(OTHER, libraries / "libcodec.so.1");
        std::ofstream((app / "resources/codecSamples/CODEC_ID_ANSI.ans").native()) << "x";
        fs::create_symlink("libone.so.1", libraries / "libone.so");
        MakeReport();
    }
    ~Fixture() { fs::remove_all(folder); }
    Fixture(const Fixture&) = delete;
    Fixture& operator=(const Fixture&) = delete;

    void Add(ItemKind kind, const std::string& name, const std::string& plugin, Verdict verdict) {
        Item& item = report.items.emplace_back();
        item.kind = kind;
        item.name = name;
        item.plugin = plugin;
        item.verdict = verdict;
        item.seconds = 1;
        item.checked = "2026-01-31T12:00:00.000Z";
    }

    void MakeReport() {
        for (Item& plugin : Parent::ListPlugins(app)) {
            plugin.verdict = plugin.file ? Verdict::Good : plugin.verdict;
            plugin.seconds = 1;
            report.items.push_back(plugin);
        }
        Get("slow").verdict = Verdict::Hung;
        Get("slow").reason = "20";
        Get("slow").seconds = 20;
        Get("odd").verdict = Verdict::Unsteady;
        Get("odd").company = {"beside"};
        Add(ItemKind::Exercise, "amp/one", "amp", Verdict::Good);
        report.items.back().depth = "exercise";
        report.items.back().id = "one";
        Add(ItemKind::Codec, "Decoder.X.CODEC_ID_ANSI", "", Verdict::Good);
        report.items.back().coder = "Decoder";
        report.items.back().implementation = "X";
        report.items.back().codec = "CODEC_ID_ANSI";
        report.complete = true;
        const std::string own = (libraries / "libone.so.1").native();
        report.moduleFiles = {own, (app / "amp.so").native(), (app / "beside.so").native(),
                              (app / "plugins.list").native()};
        report.codecFiles = {(libraries / "libcodec.so.1").native(), (app / "Codecs.so").native()};
        timespec after{};
        clock_gettime(CLOCK_REALTIME, &after);
        after.tv_sec += 1;
        const Facts facts = GetFacts();
        const auto plugins = Parent::ListPlugins(app);
        AddGround(report, Installations::Installation(app), facts, {}, plugins, after);
        known = Merge({}, report,
                      {{"amp", "beside", "slow", "odd", "Codecs"}, true, GetCodecModules(plugins)});
        known = ParseKnown(RenderKnown(known));
    }

    Item& Get(const std::string& name) {
        return *std::ranges::find(report.items, name, &Item::name);
    }

    Facts GetFacts() const {
        Facts facts{Installations::Installation(app)};
        if (!withCache) {
            return facts;
        }
        const fs::path cache = folder / "cache";
        std::ofstream((folder / "conf").native()) << libraries.native() << "\n";
        const std::string command = "/sbin/ldconfig -X -f " + (folder / "conf").native() + " -C " +
                                    cache.native() + " 2>/dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0);
        facts.cache = LoaderCache(cache.native());
        return facts;
    }

    /// Which verdicts hold now. "all": no other codecs are offered.
    Names Carry(const std::function<void(Facts&, CarryRules&)>& change) {
        Facts facts = GetFacts();
        CarryRules rules{true, std::chrono::seconds(20), "exercise"};
        if (change) {
            change(facts, rules);
        }
        Parent::CheckOptions options;
        options.plugins = options.codecs = true;
        auto plugins = Parent::ListPlugins(app);
        const auto carried = CarryOver(known, facts, rules, options, plugins);
        Names names;
        for (const std::vector<Item>* items : std::initializer_list<const std::vector<Item>*>{
                 &plugins, &carried.exercises, &carried.codecs}) {
            for (const Item& item : *items) {
                names.insert(item.carried ? item.name : "");
            }
        }
        names.insert(carried.allCodecs ? "all" : "");
        names.insert(carried.listed.contains("amp") ? "listed" : "");
        names.erase("");
        return names;
    }

    static void Touch(const fs::path& file) { fs::last_write_time(file, 1'000'000'000); }

    /// Another file with the same content and time.
    static void Renew(const fs::path& file) {
        const fs::path copy = file.string() + ".copy";
        fs::copy_file(file, copy);
        CopyTimes(file, copy);
        fs::rename(copy, file);
    }

    static void CopyTimes(const fs::path& from, const fs::path& to) {
        struct stat status {};
        ASSERT_EQ(stat(from.c_str(), &status), 0);
        const timespec times[] = {status.st_atim, status.st_mtim};
        ASSERT_EQ(utimensat(AT_FDCWD, to.c_str(), times, 0), 0);
    }

    /// The same size and time to the nanosecond, but another build.
    static void Rebuild(const fs::path& file) {
        const fs::path copy = file.string() + ".copy";
        fs::copy_file(file, copy);
        CopyTimes(file, copy);
        std::ifstream in(file.native(), std::ios::binary);
        std::string text{std::istreambuf_iterator<char>(in), {}};
        const std::string id = Installations::ReadBuildId(file);
        std::string bytes;
        for (std::size_t i = 0; i + 1 < id.size(); i += 2) {
            bytes += static_cast<char>(std::stoi(id.substr(i, 2), nullptr, 16));
        }
        ASSERT_NE(text.find(bytes), std::string::npos);
        text[text.find(bytes)] ^= 1;
        std::ofstream(file.native(), std::ios::binary) << text;
        CopyTimes(copy, file);
    }

    const bool withCache;
    const fs::path folder = fs::canonical(fs::temp_directory_path()) / fs::unique_path();
    const fs::path app = folder / "app";
    const fs::path libraries = folder / "lib";
    Report report;
    Known known;
};

const Names ALL{
    "Codecs", "Decoder.X.CODEC_ID_ANSI", "all", "amp", "amp/one", "beside", "listed", "odd",
    "slow"};

Names Without(std::initializer_list<const char*> names) {
    Names all = ALL;
    for (const char* name : names) {
        all.erase(name);
    }
    return all;
}

struct Row {
    const char* what;
    std::function<void(const fs::path& app, const fs::path& libraries, Facts&, CarryRules&)> change;
    Names held;
};

TEST(GroundTest, HoldsAsLongAsWhatItRestsOn) {
    const auto touch = Fixture::Touch;
    const Row rows[] = {
        {"nothing", [](auto&, auto&, auto&, auto&) {}, ALL},
        {"the module's time", [&](auto& app, auto&, auto&, auto&) { touch(app / "amp.so"); },
         Without({"amp", "amp/one", "listed"})},
        {"its inode", [](auto& app, auto&, auto&, auto&) { Fixture::Renew(app / "amp.so"); }, ALL},
        {"its status",
         [](auto& app, auto&, auto&, auto&) { chmod((app / "amp.so").c_str(), 0700); }, ALL},
        {"its build", [](auto& app, auto&, auto&, auto&) { Fixture::Rebuild(app / "amp.so"); },
         Without({"amp", "amp/one", "listed"})},
        {"its size",
         [](auto& app, auto&, auto&, auto&) {
             const auto time = fs::last_write_time(app / "amp.so");
             fs::resize_file(app / "amp.so", 10);
             fs::last_write_time(app / "amp.so", time);
         },
         Without({"amp", "amp/one", "listed"})},
        {"its path",
         [](auto& app, auto& libraries, auto&, auto&) {
             fs::rename(app / "amp.so", libraries / "amp.so");
             fs::create_symlink(libraries / "amp.so", app / "amp.so");
         },
         Without({"amp", "amp/one", "listed"})},
        {"the module in whose company it fails",
         [&](auto& app, auto&, auto&, auto&) { touch(app / "beside.so"); },
         Without({"beside", "odd"})},
        {"a library of the modules",
         [&](auto&, auto& libraries, auto&, auto&) { touch(libraries / "libone.so.1"); },
         Without({"amp", "amp/one", "listed", "beside", "Codecs"})},
        {"a library of the codecs",
         [&](auto&, auto& libraries, auto&, auto&) { touch(libraries / "libcodec.so.1"); },
         Without({"Decoder.X.CODEC_ID_ANSI", "all"})},
        {"a codec module", [&](auto& app, auto&, auto&, auto&) { touch(app / "Codecs.so"); },
         Without({"Codecs", "Decoder.X.CODEC_ID_ANSI", "all"})},
        {"the program", [&](auto& app, auto&, auto&, auto&) { touch(app / "Assayer"); }, {}},
        {"the helper",
         [&](auto& app, auto&, auto&, auto&) { touch(app / "assayer-exercise"); },
         {}},
        {"a sample",
         [&](auto& app, auto&, auto&, auto&) {
             touch(app / "resources/codecSamples/CODEC_ID_ANSI.ans");
         },
         Without({"Decoder.X.CODEC_ID_ANSI", "all"})},
        {"one more sample of the codec",
         [](auto&, auto&, Facts& facts, auto&) { facts.samples.emplace_back("CODEC_ID_ANSI.2"); },
         Without({"Decoder.X.CODEC_ID_ANSI", "all"})},
        {"the kernel",
         [](auto&, auto&, Facts& facts, auto&) { facts.environment["kernel"] = "0"; },
         {}},
        {"a driver",
         [](auto&, auto&, Facts& facts, auto&) { facts.environment["kernel_modules"]["x"] = "1"; },
         {}},
        {"a card",
         [](auto&, auto&, Facts& facts, auto&) { facts.environment["graphics"] = {"card"}; },
         {}},
        {"LD_PRELOAD",
         [](auto&, auto&, Facts& facts, auto&) {
             facts.environment["variables"]["LD_PRELOAD"] = "x.so";
         },
         {}},
        {"a longer item time",
         [](auto&, auto&, auto&, CarryRules& rules) { rules.itemTime = std::chrono::seconds(30); },
         Without({"slow"})},
        {"an item time of nothing",
         [](auto&, auto&, auto&, CarryRules& rules) { rules.itemTime = std::chrono::seconds(0); },
         {"slow"}},
        {"the depth", [](auto&, auto&, auto&, CarryRules& rules) { rules.depth = "stress"; },
         Without({"amp/one", "listed"})},
        {"only what ended a run",
         [](auto&, auto&, auto&, CarryRules& rules) { rules.all = false; },
         {"slow"}},
        {"another codec module",
         [](auto& app, auto&, auto&, auto&) {
             fs::copy_file(OTHER, app / "More.so");
             std::ofstream((app / "plugins.list").native(), std::ios::app)
                 << "MuxerFactory: More\n";
         },
         Without({"all"})},
        {"a sample of another codec, a file beside the modules",
         [](auto& app, auto&, Facts& facts, auto&) {
             facts.samples.emplace_back("CODEC_ID_OTHER.x");
             fs::copy_file(OTHER, app / "new.so");
         },
         ALL},
        {"a module that isn't there any more",
         [](auto& app, auto&, auto&, auto&) { fs::remove(app / "slow.so"); }, Without({"slow"})},
    };
    for (const Row& row : rows) {
        Fixture fixture;
        EXPECT_EQ(fixture.Carry([&](Facts& facts, CarryRules& rules) {
            row.change(fixture.app, fixture.libraries, facts, rules);
        }),
                  row.held)
            << row.what;
    }
}

/// A package that brings another library changes the loader's cache, but not these verdicts.
TEST(GroundTest, RestsOnItsOwnNamesInTheLoadersCache) {
    Fixture fixture(true);
    fs::copy_file(OTHER, fixture.libraries / "libunrelated.so.1");
    EXPECT_EQ(fixture.Carry({}), ALL);
    fs::rename(fixture.libraries / "libone.so.1", fixture.libraries / "kept");
    fs::create_symlink("kept", fixture.libraries / "libone.so.1");
    EXPECT_EQ(fixture.Carry({}).count("amp"), 0U);
}

TEST(GroundTest, AFileThatChangedDuringTheCheckIsNone) {
    Fixture fixture;
    timespec start{};
    clock_gettime(CLOCK_REALTIME, &start);
    start.tv_sec -= 3600;
    AddGround(fixture.report, Installations::Installation(fixture.app), fixture.GetFacts(), {},
              Parent::ListPlugins(fixture.app), start);
    EXPECT_TRUE(std::ranges::none_of(fixture.report.ground.items,
                                     [](const auto& ground) { return ground.has_value(); }));
}

TEST(TrustTest, TellsWhatAHostMayLoad) {
    Fixture fixture;
    const auto find = [&] {
        const Trust trust =
            FindTrust(fixture.known, fixture.GetFacts(), Parent::ListPlugins(fixture.app));
        std::map<std::string, std::string> found;
        for (const auto& [kind, modules] : {std::pair("trusted", &trust.trusted),
                                            {"bad", &trust.bad},
                                            {"unknown", &trust.unknown}}) {
            for (const TrustedModule& module : *modules) {
                found[module.name] = std::string(kind) + " " + module.reason;
            }
        }
        return found;
    };
    using Found = std::map<std::string, std::string>;
    EXPECT_EQ(find(), (Found{{"Codecs", "trusted "},
                             {"amp", "trusted "},
                             {"beside", "trusted "},
                             {"odd", "bad unsteady"},
                             {"slow", "bad 20"}}));
    Item& exercise = *std::ranges::find(fixture.known.items, "amp/one", &Item::name);
    exercise.verdict = Verdict::Crashed;
    exercise.reason = "SIGSEGV";
    EXPECT_EQ(find()["amp"], "bad one: crashed: SIGSEGV");
    fixture.known.listed["beside"] = {"beside/new"};
    EXPECT_THAT(find()["beside"], testing::StartsWith("unknown beside/new"));
    Fixture::Touch(fixture.app / "amp.so");
    EXPECT_EQ(find()["amp"], "unknown changed since it was checked");
}

}  // namespace
}  // namespace Tarnex::Reports
