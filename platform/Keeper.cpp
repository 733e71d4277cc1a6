#include "platform/Keeper.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <system_error>
#include <vector>

#include "platform/Limits.h"
#include "platform/ProcessTable.h"

namespace Tarnex::Platform {
namespace {

using Clock = std::chrono::steady_clock;

/// Between two rounds of kills: a child that is killed while it forks leaves another child.
constexpr int SWEEP_MILLISECONDS = 10;
/// The keeper's own descriptors lie below.
constexpr int FIRST_FOREIGN = STDERR_FILENO + 5;

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

class Keeper {
public:
    Keeper(const ProcessStart& start, const TemporaryFolder& folder, const KeeperEnds& ends)
        : start(start),
          folder(folder),
          owner(ends.owner.Get()),
          error(ends.error.Get()),
          output(ends.output.Get()),
          place(folder.GetDescriptor()) {}

    /// Ends by itself: what is thrown here must not reach the owner's code.
    [[noreturn]] void Run() noexcept {
        LeaveOwner();
        StartProgram();
        while (running && !told) {
            Await(-1);
        }
        EndDescendants();
        static_cast<void>(!chdir("/"));
        folder.Remove(place);
        message.last = true;
        Tell();
        _exit(EXIT_SUCCESS);
    }

private:
    /// Shields the keeper from the owner's signals, and closes what belongs to other runs.
    void LeaveOwner() {
        setsid();
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, nullptr);
        std::signal(SIGCHLD, SIG_DFL);
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        PreventCoreFiles();
        RaiseFileLimit();
        KeepDescriptors();
        sigemptyset(&all);
        sigaddset(&all, SIGCHLD);
        children = signalfd(-1, &all, SFD_CLOEXEC | SFD_NONBLOCK);
    }

    /// In numbers of their own, because `closefrom` works with every kernel.
    void KeepDescriptors() {
        int number = STDERR_FILENO;
        for (int* kept : {&owner, &error, &output, &place}) {
            *kept = fcntl(*kept, F_DUPFD_CLOEXEC, FIRST_FOREIGN);
        }
        for (int* kept : {&owner, &error, &output, &place}) {
            *kept = *kept < 0 ? -1 : dup3(*kept, ++number, O_CLOEXEC);
        }
        closefrom(number + 1);
        const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            dup2(null, standard);
        }
    }

    /// The owner knows the program's number before the program can do anything.
    void StartProgram() {
        Channel gate = MakeSockets();
        const pid_t child = fork();
        if (child == 0) {
            BecomeProgram(gate.far.Get());
        }
        int& problem = message.report.startError;
        problem = child < 0 ? errno : 0;
        gate.far.Close();
        close(error);
        close(output);
        if (child > 0) {
            setpgid(child, child);
            message.program = child;
            Tell();
            send(gate.near.Get(), "", 1, MSG_NOSIGNAL);
            problem = ReceiveProblem(gate.near.Get());
        }
        running = problem == 0;
        message.report.time = Clock::now();
    }

    /// Waits at the gate, then sends through it why the program can't be executed.
    [[noreturn]] void BecomeProgram(int gate) const {
        std::vector<std::string> arguments = start.arguments;
        arguments.insert(arguments.begin(), start.program);
        setpgid(0, 0);
        dup2(error, STDERR_FILENO);
        dup2(output, STDOUT_FILENO);
        ResetSignals();
        char go = 0;
        if (recv(gate, &go, 1, 0) == 1) {
            if (chdir(folder.path.c_str()) == 0) {
                execve(start.program.c_str(), Pointers(arguments).data(),
                       Pointers(start.environment).data());
            }
            const int problem = errno;
            send(gate, &problem, sizeof problem, MSG_NOSIGNAL);
        }
        _exit(EXIT_FAILURE);
    }

    static void ResetSignals() {
        for (int signal = 1; signal < NSIG; ++signal) {
            std::signal(signal, SIG_DFL);
        }
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    }

    /// 0 once the gate is closed, because a program is executed.
    static int ReceiveProblem(int gate) {
        pollfd event{gate, POLLIN, 0};
        poll(&event, 1, -1);
        int problem = 0;
        return recv(gate, &problem, sizeof problem, 0) > 0 ? problem : 0;
    }

    void Tell() const { static_cast<void>(send(owner, &message, sizeof message, MSG_NOSIGNAL)); }

    /// Waits for the end of a child or for the owner's word.
    void Await(int milliseconds) {
        std::array<pollfd, 2> events{{{children, POLLIN, 0}, {owner, POLLIN, 0}}};
        poll(events.data(), told ? 1 : events.size(), milliseconds);
        if (events[1].revents != 0) {
            told = true;
            message.report.ended = running && !GetProcessState(message.program).IsExiting();
        }
        signalfd_siginfo ignored;
        static_cast<void>(!read(children, &ignored, sizeof ignored));
        Reap();
    }

    /// Takes the children that have ended. False once there are none any more.
    bool Reap() {
        siginfo_t ended{};
        while (waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0) {
            if (ended.si_pid == 0) {
                return true;
            }
            if (running && ended.si_pid == message.program) {
                EndProgram();
            } else {
                waitpid(ended.si_pid, nullptr, 0);
            }
            ended = {};
        }
        return false;
    }

    /// The group's number is its own only until its leader is waited for.
    void EndProgram() {
        kill(-message.program, SIGKILL);
        waitpid(message.program, &message.report.status, 0);
        message.report.time = Clock::now();
        running = false;
    }

    /// Kills children again and again: an orphan becomes our child, so that reaches all of them.
    void EndDescendants() {
        const Clock::time_point until = Clock::now() + KILL_TIME;
        told = true;
        while (Reap() && Clock::now() < until) {
            if (running) {
                kill(-message.program, SIGKILL);
            }
            for (const ProcessState& child : FindChildren()) {
                kill(child.pid, SIGKILL);
            }
            Await(SWEEP_MILLISECONDS);
        }
        if (Reap()) {
            NameProcesses(FindChildren())
                .copy(message.report.survivors, sizeof message.report.survivors - 1);
        }
    }

    const ProcessStart& start;
    const TemporaryFolder& folder;
    int owner, error, output;
    int place;  // the folder's descriptor
    int children = -1;
    bool running = false;
    bool told = false;
    KeeperMessage message{.program = -1, .last = false, .report = {}};
};

}  // namespace

pid_t StartKeeper(const ProcessStart& start, const TemporaryFolder& folder, KeeperEnds ends) {
    const pid_t keeper = fork();
    if (keeper < 0) {
        throw std::system_error(errno, std::generic_category(), "can't start a process");
    }
    if (keeper == 0) {
        Keeper(start, folder, ends).Run();
    }
    return keeper;
}

}  // namespace Tarnex::Platform
