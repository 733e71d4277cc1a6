#include "assay/StopSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace Tarnex::Assay {
namespace {

volatile std::sig_atomic_t caught = 0;
volatile std::sig_atomic_t writeEnd = -1;

extern "C" void OnStop(int signal) {
    const int error = errno;
    caught = signal;
    static_cast<void>(!write(writeEnd, "", 1));
    errno = error;
}

void Handle(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (const int signal : {SIGINT, SIGTERM}) {
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace

StopSignals::StopSignals() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "no pipe");
    }
    readEnd = ends[0];
    writeEnd = ends[1];
    caught = 0;
    Handle(OnStop);
}

StopSignals::~StopSignals() {
    Handle(SIG_DFL);
    close(readEnd);
    close(writeEnd);
}

int StopSignals::Caught() {
    return caught;
}

}  // namespace Tarnex::Assay
