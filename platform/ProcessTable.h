#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace Tarnex::Platform {

/// What the system tells of a process. All zero if there is none.
struct ProcessState {
    pid_t pid = 0;
    char state = 0;  ///< as in /proc/PID/stat
    pid_t parent = 0;
    unsigned flags = 0;
    unsigned long long started = 0;  ///< in clock ticks since the system's start

    /// It is ending, though it can't be waited for yet.
    bool IsExiting() const { return (flags & 4U) != 0; }  // the kernel's PF_EXITING
    /// By SIGSTOP or by a debugger.
    bool IsStopped() const { return state == 'T' || state == 't'; }
};

ProcessState GetProcessState(pid_t pid);

/// The children of this process, also those that have ended and weren't waited for.
std::vector<ProcessState> FindChildren();

/// Their numbers and names, for people.
std::string NameProcesses(const std::vector<ProcessState>& processes);

}  // namespace Tarnex::Platform
