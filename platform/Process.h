#pragma once

#include <poll.h>
#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Tarnex::Platform {

/// A descriptor that is closed with its owner.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int value) : value(value) {}
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { Close(); }

    void Close();
    int Get() const { return value; }  ///< -1: none

private:
    int value = -1;
};

struct ProcessStart {
    std::string program;  ///< a path
    std::vector<std::string> arguments;
    std::vector<std::string> environment;  ///< "NAME=value", all of it
    bool keepOutput = false;               ///< standard output on a pipe; else it goes nowhere
};

/// How a process went.
struct ProcessReport {
    int status;                                  ///< as `waitpid` gives it
    int startError;                              ///< an errno if there was no start, else 0
    bool ended;                                  ///< by `Process::End`
    std::chrono::steady_clock::time_point time;  ///< of the exit
    char survivors[256];  ///< pids and names of what SIGKILL didn't end; empty if there are none
};

/// A process with all its descendants, also those that leave its process group, its session or
/// their own parents. None of them outlives the report, the owner of this object or the owner's
/// process, whatever ends it; what doesn't end within five seconds of SIGKILL is named and left.
///
/// It has a keeper between itself and the caller: a small process that the orphans fall to, and
/// that ends them all. Not started while the caller's process has other threads.
///
/// The process leads a process group in a session without a terminal, in a fresh, empty working
/// directory that is removed in the end, has no signal blocked or ignored, /dev/null as standard
/// input, and leaves no core file.
class Process {
public:
    /// Throws `std::system_error` if there is no pipe or no keeper to be had.
    explicit Process(const ProcessStart& start);
    /// Ends it and waits for that.
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Adds what becomes readable when there is something to read or to report.
    void AddTo(std::vector<pollfd>& descriptors) const;

    /// What can be read now, a bounded part of it, of standard error and of standard output.
    /// Doesn't wait.
    std::string ReadError() { return Read(error); }
    std::string ReadOutput() { return Read(output); }

    /// Whether nobody holds standard error open any more.
    bool HasClosedError() const { return error.Get() < 0; }

    /// None while it is running. Descendants may write until then.
    std::optional<ProcessReport> TakeReport();
    ProcessReport AwaitReport();

    /// Tells the keeper to end it; the report follows.
    void End() { control.Close(); }

private:
    static std::string Read(Descriptor& descriptor);

    Descriptor error;
    Descriptor output;
    Descriptor report;
    Descriptor control;  ///< once it is closed, the keeper ends everything
    pid_t keeper = -1;
};

/// "SIGSEGV" for 11.
std::string SignalName(int signal);

}  // namespace Tarnex::Platform
