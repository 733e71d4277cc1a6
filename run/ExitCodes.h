#pragma once

namespace Tarnex::Core::Utils {

/// What the process tells its parent. A module that ends the process gives any other status.
enum ExitCode : int {
    EXIT_CLEAN = 0,             ///< nothing broken: trust what was checked
    EXIT_TIMED_OUT = 2,         ///< by the watch-dog: the last name touched is the culprit
    EXIT_REFUSED = 3,           ///< the command line: mend it, nothing was checked
    EXIT_TARNEX_EXCEPTION = 4,  ///< a run that can't be made: the text says why
    EXIT_STD_EXCEPTION = 5,     ///< the same
    EXIT_OTHER_EXCEPTION = 6,   ///< the same
    EXIT_BROKEN_PLUGINS = 7,    ///< leave the reported plugins out
    EXIT_BROKEN_CODECS = 8,     ///< leave the reported codecs out
    EXIT_BROKEN_BOTH = 9,       ///< leave both out
    EXIT_TOLERATED_ERRORS = 10  ///< only optional plugins failed
};

}  // namespace Tarnex::Core::Utils
