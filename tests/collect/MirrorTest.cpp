#include "collect/Mirror.h"

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <boost/filesystem/string_file.hpp>
#include <map>

#include "core/support/Exception.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;
using Installations::Installation;

/// Every path below a folder, with its text or "-> target"; folders end in a slash.
std::map<std::string, std::string> Read(const fs::path& folder) {
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        std::string text;
        if (fs::is_symlink(entry.symlink_status())) {
            text = "-> " + fs::read_symlink(entry.path()).string();
        } else if (!fs::is_directory(entry.path())) {
            fs::load_string_file(entry.path(), text);
        }
        found[entry.path().lexically_relative(folder).string()] = text;
    }
    return found;
}

class MirrorTest : public testing::Test {
protected:
    MirrorTest() { PutSource(); }
    ~MirrorTest() override { fs::remove_all(root); }

    void PutSource() {
        for (const char* name : {"Assayer", "libCore.so", "libOld.so", "Ours.so", "Gone.so",
                                 "resources/samples/A.bin", "resources/samples/B.bin"}) {
            Put(app / name, name);
        }
        Put(app / "plugins.list", "CodecFactory: Ours, Gone\n");
    }

    static void Put(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        fs::save_string_file(path, text);
    }

    /// What only the user can have put there; the list names the modules.
    void PutOwn() {
        for (const char* name :
             {"Mine.so", "lib/notes", "libnotes.txt", "resources/samples/C.bin"}) {
            Put(own / name, "mine");
        }
        Put(root / "modules/gain.so", "collected");
        fs::create_symlink(root / "modules/gain.so", own / "libgain.so");
        fs::create_symlink(root / "modules/gain.so", own / "New.so");
        Put(own / "plugins.list",
            "# mine\nCodecFactory: Gone, Mine, Ours\nEffectFactory: libgain, New\n");
    }

    /// The program's next version.
    void Renew() {
        Put(app / "libCore.so", "libCore.so, renewed");
        Put(app / "New.so", "of the program");
        Put(app / "resources/samples/C.bin", "of the program");
        Put(app / "plugins.list", "CodecFactory: Ours, New\n");
        for (const char* name : {"libOld.so", "Gone.so", "resources/samples/B.bin"}) {
            fs::remove(app / name);
        }
    }

    bool Make() { return Mirror(Installation(app), Installation(own)); }

    const fs::path root = fs::canonical(fs::temp_directory_path()) / fs::unique_path();
    const fs::path app = root / "app";
    const fs::path own = root / "own";
};

TEST_F(MirrorTest, RenewsWhatItMadeAndNothingElse) {
    for (const bool byFormerVersion : {false, true}) {
        SCOPED_TRACE(byFormerVersion);
        fs::remove_all(root);
        PutSource();
        EXPECT_TRUE(Make());
        EXPECT_FALSE(Make());
        if (byFormerVersion) {
            Put(own / ".copied-from", app.string() + "\n");
        }
        PutOwn();
        auto expected = Read(own);
        Renew();
        EXPECT_TRUE(Make());
        EXPECT_FALSE(Make());

        expected["libCore.so"] = "libCore.so, renewed";
        expected["plugins.list"] =
            "# mine\nEffectFactory: libgain, New\nCodecFactory: Ours, Mine\n";
        expected.erase("Gone.so");
        expected.erase("resources/samples/B.bin");
        if (!byFormerVersion) {
            expected.erase("libOld.so");
        }
        auto found = Read(own);
        found.erase(".copied-from");
        expected.erase(".copied-from");
        EXPECT_EQ(found, expected);
    }
}

TEST_F(MirrorTest, RefusesWhatIsInTheWay) {
    Put(own / "letter", "mine");
    EXPECT_THROW(Make(), Exception);
    fs::remove_all(own);
    Make();
    fs::remove(own / "libCore.so");
    fs::create_symlink("nowhere", own / "libCore.so");
    EXPECT_THROW(Make(), Exception);
    EXPECT_TRUE(fs::is_symlink(own / "libCore.so"));
}

}  // namespace
}  // namespace Tarnex::Collect
