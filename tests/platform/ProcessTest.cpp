#include "platform/Process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>

namespace {

using Tarnex::Platform::Process;
using Tarnex::Platform::ProcessReport;

Process Shell(const std::string& script) {
    return Process({"/bin/sh", {"-c", script}, {"PATH=/usr/bin:/bin", "SEEN=yes"}, true});
}

/// Whether a process with this text in its command line is alive.
bool IsAlive(const std::string& mark) {
    return std::system(("pgrep -f '[s]leep " + mark + "' >/dev/null").c_str()) == 0;
}

TEST(Process, ReportsHowItEnded) {
    Process exits = Shell("exit 3");
    EXPECT_EQ(WEXITSTATUS(exits.AwaitReport().status), 3);
    Process killed = Shell("kill -TERM $$");
    const ProcessReport report = killed.AwaitReport();
    EXPECT_EQ(Tarnex::Platform::SignalName(WTERMSIG(report.status)), "SIGTERM");
    EXPECT_FALSE(report.ended);
    Process missing({"/nowhere/program", {}, {}});
    EXPECT_EQ(missing.AwaitReport().startError, ENOENT);
}

TEST(Process, StartsInACleanEnvironment) {
    Process process =
        Shell("echo $SEEN $(ulimit -c) $(ls | wc -l) $(cat | wc -c); echo err >&2; pwd");
    process.AwaitReport();
    const std::string output = process.ReadOutput();
    EXPECT_EQ(output.substr(0, output.find('\n')), "yes 0 0 0");
    EXPECT_EQ(process.ReadError(), "err\n");
    const std::string folder = output.substr(output.find('\n') + 1);
    EXPECT_NE(access(folder.substr(0, folder.find('\n')).c_str(), F_OK), 0) << folder;
}

/// A process with its own session, without a parent, that ignores signals.
constexpr char DETACHED[] = "(setsid sh -c 'trap \"\" TERM HUP INT; exec sleep 7654321' &) &";

TEST(Process, LeavesNoDescendant) {
    for (const char* end : {"sleep 0.2", "kill -9 $$", "exec sleep 100"}) {
        Process process = Shell(std::string(DETACHED) + " sleep 0.2; " + end);
        if (std::string(end).starts_with("exec")) {
            usleep(400000);
            EXPECT_TRUE(IsAlive("7654321"));
            process.End();
        }
        const ProcessReport report = process.AwaitReport();
        EXPECT_EQ(report.ended, std::string(end).starts_with("exec")) << end;
        EXPECT_STREQ(report.survivors, "");
        EXPECT_FALSE(IsAlive("7654321")) << end;
    }
}

TEST(Process, EndsWithItsOwner) {
    const pid_t owner = fork();
    if (owner == 0) {
        Process process = Shell("exec sleep 7654322");
        usleep(200000);
        kill(getpid(), SIGKILL);
    }
    waitpid(owner, nullptr, 0);
    for (int i = 0; i < 100 && IsAlive("7654322"); ++i) {
        usleep(20000);
    }
    EXPECT_FALSE(IsAlive("7654322"));
}

}  // namespace
