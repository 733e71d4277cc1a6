#include "platform/Signals.h"

#include <csignal>

namespace Tarnex::Platform {

void IgnoreWriteSignals() {
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace Tarnex::Platform
