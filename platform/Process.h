#pragma once

#include <poll.h>
#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/KeeperChild.h"
#include "platform/TemporaryFolder.h"

namespace Tarnex::Platform {

struct ProcessStart {
    std::string program;  ///< its path
    std::vector<std::string> arguments;
    std::vector<std::string> environment;  ///< all variables, as "NAME=value"
    bool keepOutput = false;               ///< else standard output is discarded
    bool ownHome = false;  ///< the working directory is also the home, as HOME and XDG_* say
};

/// How a process ended.
struct ProcessReport {
    int status;       ///< as `waitpid` returns it
    int startError;   ///< why it didn't start, as an errno; else 0
    bool ended;       ///< whether `Process::End` ended it
    bool keeperLost;  ///< the keeper was killed or stopped, and so all was ended
    std::chrono::steady_clock::time_point time;  ///< when it ended
    char survivors[256];  ///< pids and names of processes that survived SIGKILL; usually empty
};

/// A process with all its descendants, even those that leave its process group, its session or
/// their parents. None of them outlives the report, this object or the owner's process, whatever
/// ends it. The only exception: a process that doesn't end within five seconds of SIGKILL is left
/// alone, and the report names it. The run ends with the process that was started: a child that
/// goes on is ended too.
///
/// A keeper stands between the process and the caller: a small process that adopts the orphans and
/// ends them all. A process that kills or stops its keeper is ended by the owner, who adopts the
/// orphans then. So while a `Process` lives, children that its owner starts in another way may be
/// taken for orphans. Don't create a `Process` while the caller's process has other threads.
///
/// The process leads a process group in a session without a terminal. Its working directory is new
/// and empty, and is removed at the end. It has no signals blocked or ignored, /dev/null as
/// standard input, and as many open files as the system allows. It leaves no core file.
class Process {
public:
    /// Throws `std::system_error` if a pipe, the folder or the keeper can't be created.
    explicit Process(const ProcessStart& start);
    /// Ends the process and waits until it has ended.
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Adds the descriptors that become readable once there is something to read or to report.
    void AddTo(std::vector<pollfd>& descriptors) const;

    /// The process that was started. None before that, and if it couldn't be started.
    std::optional<pid_t> GetProgram();

    /// Reads what standard error (standard output) holds now, at most a million bytes. Doesn't
    /// wait. Gives nothing before `GetProgram` does. Once there is a report, nothing more is
    /// written: read until there is nothing.
    std::string ReadError() { return Read(error); }
    std::string ReadOutput() { return Read(output); }

    /// Whether no process holds standard error open any more.
    bool HasClosedError() const { return error.Get() < 0; }

    /// None while the process is running. Descendants may write until there is a report. Call this
    /// at least once a second: it also sees to the keeper. Takes some milliseconds at most.
    std::optional<ProcessReport> TakeReport();
    ProcessReport AwaitReport();

    /// Makes the keeper end the process. The report follows.
    void End();

private:
    void Receive();
    std::string Read(Descriptor& descriptor);

    const TemporaryFolder folder;
    Descriptor error;
    Descriptor output;
    Descriptor channel;  ///< to the keeper, which ends everything once this is shut
    std::optional<KeeperChild> keeper;
    std::optional<pid_t> program;
    std::optional<ProcessReport> result;
    bool lost = false;  ///< the keeper
};

/// The name of a signal, such as "SIGSEGV" for 11.
std::string SignalName(int signal);

}  // namespace Tarnex::Platform
