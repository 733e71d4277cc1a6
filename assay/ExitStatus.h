#pragma once

namespace Tarnex::Assay {

/// What the command tells a script. A signal adds its number to 128.
enum Status : int {
    STATUS_GOOD = 0,
    STATUS_BAD = 1,         ///< something is bad, or got worse
    STATUS_USAGE = 2,       ///< the command line is wrong
    STATUS_INCOMPLETE = 3,  ///< the check isn't complete, or a file can't be read or written
    STATUS_SIGNAL = 128
};

}  // namespace Tarnex::Assay
