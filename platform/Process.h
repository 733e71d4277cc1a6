#pragma once

#include <poll.h>
#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Tarnex::Platform {

/// Owns a file descriptor.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int value) : value(value) {}
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { Close(); }

    void Close();
    int Get() const { return value; }  ///< -1 if there is none

private:
    int value = -1;
};

struct ProcessStart {
    std::string program;  ///< its path
    std::vector<std::string> arguments;
    std::vector<std::string> environment;  ///< all variables, as "NAME=value"
    bool keepOutput = false;               ///< else standard output is discarded
};

/// How a process ended.
struct ProcessReport {
    int status;                                  ///< as `waitpid` returns it
    int startError;                              ///< why it didn't start, as an errno; else 0
    bool ended;                                  ///< whether `Process::End` ended it
    std::chrono::steady_clock::time_point time;  ///< when it ended
    char survivors[256];  ///< pids and names of processes that survived SIGKILL; usually empty
};

/// A process with all its descendants, even those that leave its process group, its session or
/// their parents. None of them outlives the report, this object or the owner's process, whatever
/// ends it. The only exception: a process that doesn't end within five seconds of SIGKILL is left
/// alone, and the report names it.
///
/// A keeper stands between the process and the caller: a small process that adopts the orphans and
/// ends them all. Don't create a `Process` while the caller's process has other threads.
///
/// The process leads a process group in a session without a terminal. Its working directory is new
/// and empty, and is removed at the end. It has no signals blocked or ignored and /dev/null as
/// standard input, and it leaves no core file.
class Process {
public:
    /// Throws `std::system_error` if a pipe or the keeper can't be created.
    explicit Process(const ProcessStart& start);
    /// Ends the process and waits until it has ended.
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Adds the descriptors that become readable once there is something to read or to report.
    void AddTo(std::vector<pollfd>& descriptors) const;

    /// Reads what standard error (standard output) holds now, up to a limit. Doesn't wait.
    std::string ReadError() { return Read(error); }
    std::string ReadOutput() { return Read(output); }

    /// Whether no process holds standard error open any more.
    bool HasClosedError() const { return error.Get() < 0; }

    /// None while the process is running. Descendants may write until there is a report.
    std::optional<ProcessReport> TakeReport();
    ProcessReport AwaitReport();

    /// Makes the keeper end the process. The report follows.
    void End() { control.Close(); }

private:
    static std::string Read(Descriptor& descriptor);

    Descriptor error;
    Descriptor output;
    Descriptor report;
    Descriptor control;  ///< the keeper ends everything once this is closed
    pid_t keeper = -1;
};

/// The name of a signal, such as "SIGSEGV" for 11.
std::string SignalName(int signal);

}  // namespace Tarnex::Platform
