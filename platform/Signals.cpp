#include "platform/Signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace Tarnex::Platform {

void IgnoreWriteSignals() {
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

StopSignals::StopSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
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
