#include "platform/Signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace Tarnex::Platform {
namespace {

bool IsIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void IgnoreWriteSignals() {
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

StopSignals::StopSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    if (!IsIgnored(SIGHUP)) {
        sigaddset(&signals, SIGHUP);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

StopSignals::~StopSignals() {
    close(descriptor);
}

int StopSignals::Take() const {
    signalfd_siginfo info{};
    const bool came = read(descriptor, &info, sizeof info) == sizeof info;
    return came ? static_cast<int>(info.ssi_signo) : 0;
}

}  // namespace Tarnex::Platform
