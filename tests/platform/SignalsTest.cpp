#include "platform/Signals.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace Tarnex::Platform {
namespace {

/// What a process of its own takes after this signal.
int Take(int number, void (*handler)(int)) {
    const pid_t process = fork();
    if (process == 0) {
        std::signal(number, handler);
        const StopSignals signals;
        raise(number);
        _exit(signals.Take());
    }
    int status = -1;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(StopSignals, AreTaken) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EQ(Take(number, SIG_DFL), number);
    }
    EXPECT_EQ(Take(SIGHUP, SIG_IGN), 0);
    EXPECT_EQ(Take(SIGTERM, SIG_IGN), SIGTERM);
}

}  // namespace
}  // namespace Tarnex::Platform
