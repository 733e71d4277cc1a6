#include "platform/AtomicFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "platform/TemporaryFolder.h"

namespace Tarnex::Platform {
namespace {

namespace fs = std::filesystem;

class AtomicFileTest : public testing::Test {
protected:
    std::string Path(const std::string& name) const { return (folder.path / name).native(); }

    std::string Read(const std::string& name) const {
        std::ifstream file(Path(name));
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::ptrdiff_t Count() const {
        return std::distance(fs::directory_iterator(folder.path), fs::directory_iterator());
    }

    const TemporaryFolder folder;
};

/// The text of the failure; none without one.
template <typename Action>
std::string Reason(const Action& action) {
    try {
        action();
    } catch (const std::system_error& error) {
        return error.what();
    }
    return "";
}

TEST_F(AtomicFileTest, ReplacesWhereLinksLead) {
    fs::create_directory(Path("there"));
    std::ofstream(Path("there/file")) << "old";
    const std::string longest(255, 'x');
    fs::create_symlink("there/link", Path("link"));
    fs::create_symlink("file", Path("there/link"));
    fs::create_symlink("there/new", Path("dangling"));
    for (const char* name : {"link", "dangling", "plain", longest.c_str()}) {
        ReplaceFile(Path(name), "one");
        ReplaceFile(Path(name), "two");
        EXPECT_EQ(Read(name), "two");
    }
    EXPECT_TRUE(fs::is_symlink(Path("link")) && fs::is_symlink(Path("there/link")));
    EXPECT_EQ(Read("there/file") + Read("there/new"), "twotwo");
    EXPECT_EQ(Count(), 5);
    const mode_t before = umask(027);
    ReplaceFile(Path("plain"), "");
    umask(before);
    EXPECT_EQ(fs::status(Path("plain")).permissions(), fs::perms(0640));
}

TEST_F(AtomicFileTest, WritesIntoWhatIsNoFile) {
    mkfifo(Path("fifo").c_str(), 0600);
    const Descriptor reader(open(Path("fifo").c_str(), O_RDONLY | O_NONBLOCK));
    ReplaceFile(Path("fifo"), "text");
    char bytes[8]{};
    EXPECT_EQ(read(reader.Get(), bytes, sizeof bytes), 4);
    const Descriptor file(open(Path("file").c_str(), O_WRONLY | O_CREAT, 0600));
    fs::create_symlink("/proc/self/fd/" + std::to_string(file.Get()), Path("stream"));
    static_cast<void>(!write(file.Get(), "before ", 7));
    ReplaceFile(Path("stream"), "text");
    EXPECT_EQ(Read("file"), "before text");
    EXPECT_FALSE(IsReplaceable(Path("fifo")) || IsReplaceable(Path("stream")) ||
                 IsReplaceable("/dev/null") || IsReplaceable(Path("")));
    EXPECT_TRUE(IsReplaceable(Path("file")) && IsReplaceable(Path("none")));
}

TEST_F(AtomicFileTest, FailsWithoutATrace) {
    ReplaceFile(Path("file"), "old");
    fs::create_directory(Path("folder"));
    fs::create_symlink("loop", Path("loop"));
    const std::pair<std::string, std::string> cases[] = {
        {"/dev/full", "can't write /dev/full: No space left on device"},
        {Path("none/file"), "can't write " + Path("none/file") + ": No such file or directory"},
        {Path("folder"), "can't write " + Path("folder") + ": Is a directory"},
        {Path("loop"), "can't write " + Path("loop") + ": Too many levels of symbolic links"},
    };
    for (const auto& [path, reason] : cases) {
        EXPECT_EQ(Reason([&path = path] { ReplaceFile(path, "new"); }), reason);
    }
    const pid_t limited = fork();
    if (limited == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{2, 2};
        setrlimit(RLIMIT_FSIZE, &limit);
        const std::string reason = Reason([&] { ReplaceFile(Path("file"), "new"); });
        _exit(reason.ends_with("/file: File too large") ? 0 : 1);
    }
    int status = -1;
    waitpid(limited, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Read("file"), "old");
    EXPECT_EQ(Count(), 3);
}

TEST_F(AtomicFileTest, CopiesAndLinksInsteadOfWhatIsThere) {
    ReplaceFile(Path("source"), "text");
    fs::permissions(Path("source"), fs::perms(0750));
    fs::last_write_time(Path("source"), fs::file_time_type::clock::now() - std::chrono::hours(1));
    ReplaceFile(Path("victim"), "victim");
    for (const char* name : {"copy", "link"}) {
        fs::create_symlink("victim", Path(name));
    }
    ReplaceByCopy(Path("source"), Path("copy"));
    ReplaceByLink("source", Path("link"));
    EXPECT_EQ(Read("copy") + Read("link") + Read("victim"), "texttextvictim");
    EXPECT_FALSE(fs::is_symlink(Path("copy")));
    EXPECT_EQ(fs::status(Path("copy")).permissions(), fs::perms(0750));
    EXPECT_EQ(fs::last_write_time(Path("copy")), fs::last_write_time(Path("source")));
    EXPECT_EQ(Reason([&] { ReplaceByCopy(Path("none"), Path("copy")); }),
              "can't read " + Path("none") + ": No such file or directory");
    fs::create_directory(Path("folder"));
    EXPECT_NE(Reason([&] { ReplaceByLink("source", Path("folder")); }), "");
    EXPECT_EQ(Count(), 5);
}

}  // namespace
}  // namespace Tarnex::Platform
