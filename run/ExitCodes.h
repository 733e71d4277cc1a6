#pragma once

namespace Tarnex::Core::Utils {

/// The exit status that a parent sees. A module that ends the process may give any other status.
enum ExitCode : int {
    EXIT_CLEAN = 0,             ///< nothing broken: trust what was checked
    EXIT_TIMED_OUT = 2,         ///< ended by the watch-dog: the last name touched is the culprit
    EXIT_REFUSED = 3,           ///< wrong command line: fix it, nothing was checked
    EXIT_TARNEX_EXCEPTION = 4,  ///< the run is impossible: the text says why
    EXIT_STD_EXCEPTION = 5,     ///< as 4
    EXIT_OTHER_EXCEPTION = 6,   ///< as 4
    EXIT_BROKEN_PLUGINS = 7,    ///< don't use the reported plugins
    EXIT_BROKEN_CODECS = 8,     ///< don't use the reported codecs
    EXIT_BROKEN_BOTH = 9,       ///< don't use either
    EXIT_TOLERATED_ERRORS = 10  ///< only optional plugins failed
};

}  // namespace Tarnex::Core::Utils
