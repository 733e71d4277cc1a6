#pragma once

#include "platform/Descriptor.h"
#include "platform/Process.h"
#include "platform/TemporaryFolder.h"

namespace Tarnex::Platform {

/// What a keeper sends: once before the program is executed, and once when all is over.
struct KeeperMessage {
    pid_t program;  ///< the process that was started; -1 if there is none
    bool last;
    ProcessReport report;  ///< of the last one
};

/// The keeper's ends of what connects it with its owner.
struct KeeperEnds {
    Descriptor owner;  ///< gets messages; the keeper ends everything once the other side is shut
    Descriptor error;
    Descriptor output;  ///< may be none
};

/// Forks a keeper: a small process that starts the program, adopts the orphans of the run, and
/// ends them all. Gives its number. Throws `std::system_error`.
pid_t StartKeeper(const ProcessStart& start, const TemporaryFolder& folder, KeeperEnds ends);

}  // namespace Tarnex::Platform
