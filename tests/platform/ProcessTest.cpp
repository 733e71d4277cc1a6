#include "platform/Process.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>
#include <sstream>

#include "platform/Limits.h"

namespace {

using namespace std::chrono_literals;
using Tarnex::Platform::Process;
using Tarnex::Platform::ProcessReport;
using Clock = std::chrono::steady_clock;

Process Shell(const std::string& script, bool ownHome = false) {
    return Process({"/bin/sh",
                    {"-c", script},
                    {"PATH=/usr/bin:/bin", "SEEN=yes", "HOME=/nowhere"},
                    true,
                    ownHome});
}

/// The argument of a `sleep` that no other process has.
const std::string MARK = std::to_string(7000000 + getpid());

bool IsAlive() {
    return std::system(("pgrep -f '[s]leep " + MARK + "' >/dev/null").c_str()) == 0;
}

/// A process with its own session, without a parent, that ignores signals.
const std::string DETACHED =
    "(setsid sh -c 'trap \"\" TERM HUP INT; exec sleep " + MARK + "' &) & sleep 0.3; ";

std::vector<std::string> ReadLines(Process& process) {
    process.AwaitReport();
    std::istringstream text(process.ReadOutput());
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool Exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

TEST(Process, ReportsHowItEnded) {
    Process exits = Shell("exit 3");
    EXPECT_EQ(WEXITSTATUS(exits.AwaitReport().status), 3);
    Process killed = Shell("kill -TERM $$");
    const ProcessReport report = killed.AwaitReport();
    EXPECT_EQ(Tarnex::Platform::SignalName(WTERMSIG(report.status)), "SIGTERM");
    EXPECT_FALSE(report.ended || report.keeperLost);
    Process missing({"/nowhere/program", {}, {}});
    EXPECT_EQ(missing.AwaitReport().startError, ENOENT);
    EXPECT_FALSE(missing.GetProgram());
}

TEST(Process, StartsInACleanEnvironment) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit low{100, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &low);
    Process process = Shell(
        "echo $SEEN $(ulimit -c) $(ls -A | wc -l) $(cat | wc -c) $HOME; echo err >&2; pwd;"
        "ulimit -n; ls /proc/self/fd | wc -l");
    const std::vector<std::string> lines = ReadLines(process);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], "yes 0 0 0 /nowhere");
    EXPECT_EQ(process.ReadError(), "err\n");
    EXPECT_FALSE(Exists(lines[1])) << lines[1];
    EXPECT_EQ(lines[2], std::to_string(std::min<rlim_t>(limit.rlim_max, 1'048'576)));
    EXPECT_EQ(lines[3], "4");  // one is the folder that is listed
    Tarnex::Platform::RaiseFileLimit();
    getrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(lines[2], std::to_string(limit.rlim_cur));
}

TEST(Process, MayHaveAHomeOfItsOwn) {
    Process process = Shell("pwd; echo $HOME; ls -A; echo $XDG_CACHE_HOME $XDG_CONFIG_HOME", true);
    const std::vector<std::string> lines = ReadLines(process);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[1], lines[0]);
    EXPECT_EQ(lines[2], lines[0] + "/.cache " + lines[0] + "/.config");
}

TEST(Process, LeavesNoDescendant) {
    for (const char* end : {"sleep 0.2", "kill -9 $$", "exec sleep 100"}) {
        const bool endless = std::string(end).starts_with("exec");
        Process process = Shell(DETACHED + end);
        if (endless) {
            usleep(600000);
            EXPECT_TRUE(IsAlive());
            process.End();
        }
        const ProcessReport report = process.AwaitReport();
        EXPECT_EQ(report.ended, endless) << end;
        EXPECT_STREQ(report.survivors, "");
        EXPECT_FALSE(IsAlive()) << end;
    }
}

/// Without its keeper, a run ends at once, and alone.
TEST(Process, LosesItsKeeper) {
    for (const char* attack : {"kill -9 $PPID", "kill -STOP $PPID", "kill -STOP $PPID; exit 5"}) {
        const Clock::time_point start = Clock::now();
        Process before = Shell("exec sleep 100");
        Process process = Shell(
            std::string("pwd; ").append(DETACHED).append(attack).append("; sleep ").append(MARK));
        Process after = Shell(DETACHED + "exec sleep 100");
        const std::string folder = ReadLines(process).at(0);
        const ProcessReport report = process.AwaitReport();
        EXPECT_TRUE(report.keeperLost && !report.ended) << attack;
        EXPECT_TRUE(process.GetProgram());
        EXPECT_STREQ(report.survivors, "");
        EXPECT_FALSE(Exists(folder)) << folder;
        EXPECT_LT(Clock::now() - start, 5s) << attack;
        usleep(300000);
        EXPECT_FALSE(before.TakeReport() || after.TakeReport()) << attack;
        EXPECT_TRUE(IsAlive());
        after.End();
        EXPECT_TRUE(after.AwaitReport().ended);
        EXPECT_FALSE(IsAlive()) << attack;
    }
}

/// However early it does that, its number is known.
TEST(Process, LosesItsKeeperAtOnce) {
    for (int i = 0; i < 10; ++i) {
        Process process = Shell("kill -9 $PPID");
        EXPECT_TRUE(process.AwaitReport().keeperLost);
        EXPECT_TRUE(process.GetProgram());
    }
}

TEST(Process, EndsWithTheProcessThatWasStarted) {
    Process process = Shell("echo $$ >&2; (sleep 0.5; echo late >&2; sleep " + MARK + ") & exit 7");
    std::string text;
    while ((text = process.ReadError()).empty()) {
    }
    const std::string program = std::to_string(process.GetProgram().value_or(0));
    EXPECT_EQ(WEXITSTATUS(process.AwaitReport().status), 7);
    EXPECT_EQ(text + process.ReadError(), program + "\n");
    EXPECT_FALSE(IsAlive());
}

TEST(Process, IsReadPieceByPiece) {
    Process process = Shell("exec yes >&2");
    const Clock::time_point start = Clock::now();
    std::size_t most = 0;
    while (Clock::now() - start < 200ms) {
        most = std::max(most, process.ReadError().size());
    }
    process.End();
    process.AwaitReport();
    EXPECT_GT(most, 0);
    EXPECT_LT(most, 1'100'000);
    EXPECT_LT(Clock::now() - start, 3s);
}

/// Runs in a process of its own, without root's rights; gives that process's status.
int WithoutRights(const std::function<bool()>& test) {
    const pid_t user = fork();
    if (user == 0) {
        const bool isUser = getuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0);
        _exit(isUser && test() ? 0 : 1);
    }
    int status = -1;
    waitpid(user, &status, 0);
    return status;
}

TEST(Process, RemovesItsFolderInAnyCase) {
    const std::string scripts[] = {
        "mkdir -p a/b/c; touch a/b/c/d; chmod 0 a/b/c a/b a .",
        "perl -e 'for (1..3000) { mkdir deep; chdir deep } chmod 0, \".\"'",
        "mv $PWD $PWD.moved; mkdir $PWD; touch $PWD/late",
        "mv $PWD $PWD.moved; ln -s /tmp $PWD; mkdir -p a/b; chmod 0 a .",
        "mv $PWD $PWD.moved; kill -9 $PPID; sleep 100",
        "mkdir a; ln -s /tmp a/link; ln -s / b; mkfifo c; touch .hidden 0 1; chmod 400 a .",
    };
    for (const std::string& script : scripts) {
        EXPECT_EQ(WithoutRights([&] {
                      Process process = Shell("pwd; umask 0; " + script);
                      const auto lines = ReadLines(process);
                      return lines.size() == 1 && !Exists(lines[0]) &&
                             !Exists(lines[0] + ".moved") && Exists("/tmp");
                  }),
                  0)
            << script;
    }
}

TEST(Process, NeedsNoGoodTmpdir) {
    const char* before = std::getenv("TMPDIR");
    const std::string kept = before == nullptr ? "/tmp" : before;
    for (const char* value : {"/nowhere/at/all", ".", "/dev/null", "/proc", ""}) {
        setenv("TMPDIR", value, 1);
        Process process = Shell("pwd; touch file");
        const std::string folder = ReadLines(process).at(0);
        const std::string parent = *value == '.' ? std::filesystem::current_path() : "/";
        EXPECT_TRUE(folder.starts_with(parent)) << value;
        EXPECT_NE(folder.find("/assay-"), std::string::npos) << value;
        EXPECT_FALSE(Exists(folder)) << folder;
    }
    setenv("TMPDIR", kept.c_str(), 1);
}

TEST(Process, EndsWithItsOwner) {
    const pid_t owner = fork();
    if (owner == 0) {
        Process process = Shell("exec sleep " + MARK);
        usleep(200000);
        kill(getpid(), SIGKILL);
    }
    waitpid(owner, nullptr, 0);
    for (int i = 0; i < 100 && IsAlive(); ++i) {
        usleep(20000);
    }
    EXPECT_FALSE(IsAlive());
}

}  // namespace
