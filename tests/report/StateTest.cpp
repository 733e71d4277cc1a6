// The state of an installation: what is known is merged, reports are kept, nothing is lost.

#include <gmock/gmock.h>

#include <boost/filesystem.hpp>
#include <fstream>

#include "core/support/Exception.h"
#include "report/OpenItems.h"
#include "report/Saving.h"

namespace Tarnex::Reports {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;
using Parent::ItemKind;
using Parent::Verdict;
using Notes = std::vector<std::string>;
using testing::HasSubstr;

class StateTest : public testing::Test {
protected:
    ~StateTest() override { fs::remove_all(root); }

    static Item Make(ItemKind kind, const std::string& name, Verdict verdict, int minute,
                     const std::string& depth = "") {
        Item item;
        item.kind = kind;
        item.name = name;
        item.plugin = kind == ItemKind::Exercise ? name.substr(0, name.find('/')) : "";
        item.verdict = verdict;
        item.depth = depth;
        item.checked = "2026-01-31T12:0" + std::to_string(minute) + ":00.000Z";
        return item;
    }

    static Report MakeReport(std::vector<Item> items) {
        Report report;
        report.machine = report.options = report.environment = Json::object();
        report.items = std::move(items);
        report.ground.items.resize(report.items.size());
        report.complete = true;
        return report;
    }

    std::map<std::string, std::string> GetKnown() const {
        Notes notes;
        std::map<std::string, std::string> verdicts;
        for (const Item& item : state.Read(notes).items) {
            verdicts[item.name + item.depth] = ToString(item.verdict);
        }
        EXPECT_TRUE(notes.empty());
        return verdicts;
    }

    void Save(Report report, const Scope& scope, int second = 0) {
        Saving saving(state, timespec{1'769'860'800 + second, 0});
        Notes notes;
        const fs::path lists = saving.Open(notes);
        std::ofstream((lists / "alone.list").native()) << "x";
        report.items.front().repro = {"Assayer", (lists / "alone.list").native()};
        saving.Save(report, scope);
        EXPECT_EQ(report.notes, Notes());
    }

    const fs::path root = fs::temp_directory_path() / fs::unique_path();
    const State state{root, "own"};
    const Scope scope{{"amp", "gain"}, true, std::nullopt};
};

TEST_F(StateTest, TheLaterVerdictCounts) {
    constexpr auto plugin = ItemKind::Plugin;
    constexpr auto exercise = ItemKind::Exercise;
    Save(MakeReport({Make(plugin, "amp", Verdict::Good, 2),
                     Make(plugin, "gain", Verdict::Crashed, 2),
                     Make(plugin, "gone", Verdict::Good, 2),
                     Make(exercise, "amp/one", Verdict::Good, 2, "exercise"),
                     Make(exercise, "amp/two", Verdict::Good, 2, "exercise")}),
         scope);
    Save(MakeReport({Make(exercise, "amp/one", Verdict::Crashed, 3, "stress"),
                     Make(exercise, "amp/three", Verdict::Good, 3, "stress")}),
         scope, 1);
    Save(MakeReport({Make(plugin, "amp", Verdict::Failed, 1),
                     Make(plugin, "gain", Verdict::NotReached, 4)}),
         scope, 2);
    using Known = std::map<std::string, std::string>;
    EXPECT_EQ(GetKnown(), (Known{{"amp", "good"},
                                 {"gain", "crashed"},
                                 {"amp/oneexercise", "good"},
                                 {"amp/onestress", "crashed"},
                                 {"amp/threestress", "good"}}));
    Notes notes;
    EXPECT_THAT(state.Read(notes).listed.at("amp"), testing::ElementsAre("amp/one", "amp/three"));
}

TEST_F(StateTest, KeepsTheNewestReportsAndTheListsThatAreNeeded) {
    Save(MakeReport({Make(ItemKind::Plugin, "amp", Verdict::Crashed, 1)}), scope, 0);
    const fs::path abandoned = state.reports / ".20260131T000000.000Z-dead00";
    fs::create_directory(abandoned);
    for (int i = 1; i <= 51; ++i) {
        Save(MakeReport({Make(ItemKind::Plugin, "gain", Verdict::Crashed, 1)}), scope, i);
    }
    const auto reports = state.ListReports();
    ASSERT_EQ(reports.size(), 50U);
    EXPECT_EQ(fs::canonical(root / "report.json"), fs::canonical(reports.back()));
    EXPECT_FALSE(fs::exists(abandoned));
    // The first report went, but what is known of amp comes from it.
    Notes notes;
    const Known known = state.Read(notes);
    for (const Item& item : known.items) {
        EXPECT_TRUE(fs::exists(item.repro.at(1))) << item.repro.at(1);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(state.reports), {}), 50 + 51);
}

TEST_F(StateTest, SaysWhatItCannotReadOrWriteAndGoesOn) {
    fs::create_directories(state.folder);
    std::ofstream(state.known.native()) << "{";
    Notes notes;
    EXPECT_TRUE(state.Read(notes).items.empty());
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_THAT(notes[0], HasSubstr("known.json.unreadable-"));
    EXPECT_FALSE(fs::exists(state.known));

    const Lock held(state.folder / "lock", std::chrono::seconds(1));
    ASSERT_TRUE(held.IsHeld());
    Report report = MakeReport({Make(ItemKind::Plugin, "amp", Verdict::Good, 1)});
    Saving saving(state, timespec{});
    saving.Save(report, scope);
    ASSERT_EQ(report.notes.size(), 1U);
    EXPECT_THAT(report.notes[0], HasSubstr("another check holds the lock"));
    EXPECT_TRUE(fs::exists(saving.GetReport())) << "the report itself is kept";
    EXPECT_FALSE(fs::exists(state.known));

    // A file stands where the folder should be, which not even root can write into.
    std::ofstream((root / "file").native()) << "";
    Saving none(State(root / "file", "own"), timespec{});
    notes.clear();
    const fs::path lists = none.Open(notes);
    EXPECT_TRUE(fs::is_directory(lists));
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_THAT(notes[0], HasSubstr("can't be kept"));
    none.Save(report, scope);
    EXPECT_THROW(Saving((root / "file/report.json")), std::system_error);
}

TEST_F(StateTest, ChecksWithTheSameReportPathHaveFoldersOfTheirOwn) {
    fs::create_directories(root);
    const fs::path file = root / "report.json";
    Saving one(file);
    Saving two(file);
    Notes notes;
    EXPECT_NE(one.Open(notes), two.Open(notes));
    std::ofstream((two.Open(notes) / "alone.list").native()) << "two";
    Report report = MakeReport({Make(ItemKind::Plugin, "amp", Verdict::Good, 1)});
    one.Save(report, scope);
    report.items[0].repro = {"Assayer", (two.Open(notes) / "alone.list").native()};
    two.Save(report, scope);
    EXPECT_EQ(ReadReport(file).items[0].repro[1], file.string() + ".lists/alone.list");
    EXPECT_TRUE(fs::exists(file.string() + ".lists/alone.list"));
    EXPECT_FALSE(fs::exists(root / "own"));
}

TEST_F(StateTest, KeysAreThoseOfThePath) {
    EXPECT_EQ(State::GetKey("/home/x/app", true), "own");
    EXPECT_EQ(State::GetKey("abc", false), "ba7816bf8f01cfea") << "SHA-256's own example";
}

TEST_F(StateTest, TellsWhatWasOpenWhenTheMachineStopped) {
    fs::create_directories(root);
    {
        OpenItems one(root, "stress", "first");
        OpenItems two(root, "stress", "first");
        one.Write({"amp", "gain"});
        two.Write({"slow/fx"});
        fs::copy_file(root / "open.json", root / "kept");
        fs::copy_file(root / "open-1.json", root / "kept-1");
    }
    EXPECT_FALSE(fs::exists(root / "open.json")) << "both ended";
    fs::rename(root / "kept", root / "open.json");
    fs::rename(root / "kept-1", root / "open-1.json");
    EXPECT_TRUE(OpenItems(root, "stress", "first").GetSuspects().empty()) << "the check was killed";
    EXPECT_THAT(OpenItems(root, "load", "second").GetSuspects(),
                testing::ElementsAre("amp", "gain"));
    OpenItems later(root, "stress", "second");
    EXPECT_THAT(later.GetSuspects(), testing::ElementsAre("amp", "gain", "slow/fx"));
    EXPECT_THAT(later.GetCulprits(), testing::ElementsAre("slow/fx"));
    later.Write({"amp"});
    EXPECT_TRUE(fs::exists(root / "open.json")) << "still needed";
    EXPECT_TRUE(fs::exists(root / "open-2.json"));
    later.Forget([](const std::string& name) { return name != "gain"; });
    EXPECT_THAT(OpenItems(root, "stress", "third").GetSuspects(),
                testing::ElementsAre("amp", "amp", "gain"));
}

}  // namespace
}  // namespace Tarnex::Reports
