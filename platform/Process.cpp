#include "platform/Process.h"

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>
#include <utility>

namespace Tarnex::Platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds KILL_TIME{5};
/// Between two rounds of kills: a child that is killed while it forks leaves another child.
constexpr int SWEEP_MILLISECONDS = 10;
/// In bytes, so that a process that never stops writing doesn't keep its reader busy.
constexpr std::size_t MAX_READ = 1'000'000;

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// Copies the descriptor above the standard streams, which the keeper replaces.
Descriptor Raise(const Descriptor& low) {
    Descriptor high(fcntl(low.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (high.Get() < 0) {
        Fail("can't make a pipe");
    }
    return high;
}

struct Pipe {
    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            Fail("can't make a pipe");
        }
        const Descriptor lowRead(ends[0]);
        const Descriptor lowWrite(ends[1]);
        read = Raise(lowRead);
        write = Raise(lowWrite);
    }
    Descriptor read;
    Descriptor write;
};

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// Two fields of /proc/PID/stat. They follow the process's name, which may contain anything.
struct ProcessState {
    explicit ProcessState(const std::string& pid) {
        std::ifstream file("/proc/" + pid + "/stat");
        std::string text;
        std::getline(file, text, '\0');  // No exception if the process has just gone.
        const std::size_t nameEnd = text.rfind(')');
        if (nameEnd != std::string::npos) {
            std::sscanf(text.c_str() + nameEnd, ") %*c %d %*d %*d %*d %*d %u", &parent, &flags);
        }
    }

    /// The kernel's PF_EXITING: the process is ending, though it can't be waited for yet.
    bool IsExiting() const { return (flags & 4U) != 0; }

    pid_t parent = 0;
    unsigned flags = 0;
};

std::vector<pid_t> FindChildren() {
    std::vector<pid_t> children;
    const std::unique_ptr<DIR, int (*)(DIR*)> processes(opendir("/proc"), closedir);
    while (const dirent* entry = processes ? readdir(processes.get()) : nullptr) {
        const pid_t pid = std::atoi(entry->d_name);
        if (pid > 0 && ProcessState(entry->d_name).parent == getpid()) {
            children.push_back(pid);
        }
    }
    return children;
}

/// The process in between: starts the program, waits for its end, and ends what it left behind.
class Keeper {
public:
    Keeper(const ProcessStart& start, int control, int report, int error, int output)
        : start(start), control(control), report(report), error(error), output(output) {}

    [[noreturn]] void Run() {
        LeaveOwner();
        EnterFolder();
        StartProgram();
        while (running && !told) {
            Await(-1);
        }
        EndDescendants();
        LeaveFolder();
        static_cast<void>(!write(report, &result, sizeof result));
        _exit(EXIT_SUCCESS);
    }

private:
    /// Shields the keeper from the owner's signals, and closes the pipes of other runs.
    void LeaveOwner() {
        setsid();
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, nullptr);
        std::signal(SIGCHLD, SIG_DFL);
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        LimitCore();
        std::array kept{control, report, error, output};
        std::sort(kept.begin(), kept.end());
        int next = STDERR_FILENO + 1;
        for (const int descriptor : kept) {
            CloseBetween(next, descriptor);
            next = std::max(next, descriptor + 1);
        }
        close_range(static_cast<unsigned>(next), ~0U, 0);
        ReplaceStandardStreams();
        sigemptyset(&all);
        sigaddset(&all, SIGCHLD);
        children = signalfd(-1, &all, SFD_CLOEXEC | SFD_NONBLOCK);
    }

    static void CloseBetween(int first, int end) {
        if (first < end) {
            close_range(static_cast<unsigned>(first), static_cast<unsigned>(end - 1), 0);
        }
    }

    /// Not zero bytes, because the kernel then still starts a program that collects core dumps.
    static void LimitCore() {
        const rlimit limit{1, 1};
        setrlimit(RLIMIT_CORE, &limit);
    }

    static void ReplaceStandardStreams() {
        const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            dup2(null, standard);
        }
    }

    void EnterFolder() {
        std::error_code ignored;
        folder = (std::filesystem::temp_directory_path(ignored) / "assay-XXXXXX").native();
        if (mkdtemp(folder.data()) == nullptr || chdir(folder.c_str()) != 0) {
            folder.clear();
            static_cast<void>(!chdir("/"));
        }
    }

    void LeaveFolder() const {
        std::error_code ignored;
        if (!folder.empty()) {
            static_cast<void>(!chdir("/"));
            std::filesystem::remove_all(folder, ignored);
        }
    }

    void StartProgram() {
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, error, STDERR_FILENO);
        if (output >= 0) {
            posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
        }
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        std::vector<std::string> arguments = start.arguments;
        arguments.insert(arguments.begin(), start.program);
        result.startError =
            posix_spawn(&program, start.program.c_str(), &files, &attributes,
                        Pointers(arguments).data(), Pointers(start.environment).data());
        running = result.startError == 0;
        result.time = Clock::now();
        close(error);
        close(output);
    }

    /// False once there are no descendants left.
    bool Await(int milliseconds) {
        std::array<pollfd, 2> events{{{children, POLLIN, 0}, {control, POLLIN, 0}}};
        poll(events.data(), told ? 1 : events.size(), milliseconds);
        if (events[1].revents != 0) {
            told = true;
            result.ended = running && !ProcessState(std::to_string(program)).IsExiting();
        }
        signalfd_siginfo ignored;
        static_cast<void>(!read(children, &ignored, sizeof ignored));
        return Reap();
    }

    bool Reap() {
        int status = 0;
        pid_t ended = 0;
        while ((ended = waitpid(-1, &status, WNOHANG)) > 0) {
            if (ended == program) {
                running = false;
                result.status = status;
                result.time = Clock::now();
            }
        }
        return ended == 0;
    }

    /// Kills children again and again: an orphan becomes our child, so that reaches all of them.
    void EndDescendants() {
        if (!Reap()) {
            return;
        }
        told = true;
        const Clock::time_point until = Clock::now() + KILL_TIME;
        do {
            kill(-program, SIGKILL);
            for (const pid_t child : FindChildren()) {
                kill(child, SIGKILL);
            }
        } while (Await(SWEEP_MILLISECONDS) && Clock::now() < until);
        if (Reap()) {
            NameSurvivors();
        }
    }

    void NameSurvivors() {
        std::string names;
        for (const pid_t child : FindChildren()) {
            std::ifstream file("/proc/" + std::to_string(child) + "/comm");
            std::string name;
            std::getline(file, name);
            names += (names.empty() ? "" : ", ") + std::to_string(child) + " " + name;
        }
        names.copy(result.survivors, sizeof result.survivors - 1);
    }

    const ProcessStart& start;
    const int control, report, error, output;
    int children = -1;
    pid_t program = -1;
    bool running = false;
    bool told = false;
    std::string folder;
    ProcessReport result{};
};

pid_t StartKeeper(const ProcessStart& start, int control, int report, int error, int output) {
    const pid_t keeper = fork();
    if (keeper < 0) {
        Fail("can't start a process");
    }
    if (keeper == 0) {
        Keeper(start, control, report, error, output).Run();
    }
    return keeper;
}

Descriptor WithoutBlocking(Descriptor descriptor) {
    fcntl(descriptor.Get(), F_SETFL, O_NONBLOCK);
    return descriptor;
}

}  // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : value(std::exchange(other.value, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(value, other.value);
    return *this;
}

void Descriptor::Close() {
    if (value >= 0) {
        close(std::exchange(value, -1));
    }
}

Process::Process(const ProcessStart& start) {
    Pipe errors, reports, controls;
    const std::unique_ptr<Pipe> outputs = start.keepOutput ? std::make_unique<Pipe>() : nullptr;
    keeper = StartKeeper(start, controls.read.Get(), reports.write.Get(), errors.write.Get(),
                         outputs ? outputs->write.Get() : -1);
    error = WithoutBlocking(std::move(errors.read));
    report = WithoutBlocking(std::move(reports.read));
    control = std::move(controls.write);
    if (outputs) {
        output = WithoutBlocking(std::move(outputs->read));
    }
}

Process::~Process() {
    End();
    while (waitpid(keeper, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void Process::AddTo(std::vector<pollfd>& descriptors) const {
    for (const Descriptor* descriptor : {&error, &output, &report}) {
        descriptors.push_back({descriptor->Get(), POLLIN, 0});
    }
}

std::string Process::Read(Descriptor& descriptor) {
    std::string text;
    std::array<char, 16384> buffer;
    ssize_t size = 1;
    while (descriptor.Get() >= 0 && text.size() < MAX_READ && size > 0) {
        size = read(descriptor.Get(), buffer.data(), buffer.size());
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
    if (size == 0) {
        descriptor.Close();
    }
    return text;
}

ProcessReport Process::AwaitReport() {
    pollfd event{report.Get(), POLLIN, 0};
    while (poll(&event, 1, -1) < 0) {
    }
    return TakeReport().value();
}

std::optional<ProcessReport> Process::TakeReport() {
    ProcessReport result{};
    const ssize_t size = read(report.Get(), &result, sizeof result);
    if (size < 0) {
        return std::nullopt;
    }
    if (size == 0) {  // The keeper was killed.
        result.status = SIGKILL;
        result.time = Clock::now();
    }
    return result;
}

std::string SignalName(int signal) {
    const char* name = sigabbrev_np(signal);
    return name == nullptr ? "signal " + std::to_string(signal) : std::string("SIG") + name;
}

}  // namespace Tarnex::Platform
