#include "platform/ProcessEnd.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace Tarnex::Platform {
namespace {

volatile std::sig_atomic_t exitCode = 0;

void EndAtOnce(int) {
    _exit(static_cast<int>(exitCode));
}

}  // namespace

void EndProcess(int code) {
    exitCode = code;
    // Each is the end of a fault "hang-then-..." in the tests of whole processes.
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        std::signal(fault, EndAtOnce);
    }
    std::exit(code);
}

}  // namespace Tarnex::Platform
