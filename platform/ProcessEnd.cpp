#include "platform/ProcessEnd.h"

#include <dirent.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <thread>

namespace Tarnex::Platform {
namespace {

/// What the kernel needs to bring the signal to a running thread; there is no answer to wait for
/// from those that block it.
constexpr std::chrono::milliseconds PARK_TIME{20};

volatile std::sig_atomic_t exitCode = 0;

void StayForEver(int) {
    for (;;) {
        pause();
    }
}

void EndAtOnce(int) {
    _exit(static_cast<int>(exitCode));
}

void SetHandler(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_ONSTACK;
    sigfillset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

/// Not among the signals that programs commonly use for themselves.
int ParkSignal() {
    return SIGRTMAX - 3;
}

void ParkOtherThreads() {
    const std::unique_ptr<DIR, int (*)(DIR*)> tasks(opendir("/proc/self/task"), closedir);
    if (!tasks) {
        return;
    }
    SetHandler(ParkSignal(), StayForEver);
    const long self = syscall(SYS_gettid);
    while (const dirent* entry = readdir(tasks.get())) {
        const long thread = std::strtol(entry->d_name, nullptr, 10);
        if (thread > 0 && thread != self) {
            syscall(SYS_tgkill, getpid(), thread, ParkSignal());
        }
    }
    std::this_thread::sleep_for(PARK_TIME);
}

}  // namespace

void EndProcess(int code) {
    exitCode = code;
    ParkOtherThreads();
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        SetHandler(fault, EndAtOnce);
    }
    std::exit(code);
}

}  // namespace Tarnex::Platform
