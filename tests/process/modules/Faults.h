#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>
#include <unwind.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <locale>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "core/media/Factories.h"

/// What a module's code can do to its process.
namespace Faults {

[[noreturn]] inline void Hang() {
    for (;;) {
        pause();
    }
}

inline void WriteToNowhere() {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}

inline int Recurse(const volatile char* above) {
    volatile char block[1024] = {};
    return above == block ? 0 : Recurse(block) + block[0];
}

inline void DivideByZero() {
    volatile int one = 1, zero = 0;
    zero = one / zero;
}

[[noreturn]] inline void HangUnderBlockedSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    Hang();
}

[[noreturn]] inline void HangInDestructor() {
    struct Hanging {
        ~Hanging() { Hang(); }
    };
    static const Hanging hanging;
    Hang();
}

/// Waits like code that joins a thread which only an exit handler stops.
inline void HangUntilExit() {
    static std::atomic<bool> isEnding = false;
    std::atexit([] {
        isEnding = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    });
    while (!isEnding) {
        std::this_thread::yield();
    }
}

inline void LeaveDirectory() {
    std::string folder = "/tmp/assayer-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr || chdir(folder.c_str()) != 0 ||
        rmdir(folder.c_str()) != 0) {
        throw std::runtime_error("still in the directory");
    }
}

/// From now on, signals interrupt system calls.
inline void TakeSignals() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    const itimerval often{{0, 1000}, {0, 1000}};
    std::signal(SIGTERM, SIG_IGN);
    sigaction(SIGALRM, &action, nullptr);
    setitimer(ITIMER_REAL, &often, nullptr);
}

inline void FloodStandardOutput() {
    const std::string block(500'000, 'x');
    for (int i = 0; i < 1000; ++i) {
        if (std::fwrite(block.data(), 1, block.size(), stdout) != block.size()) {
            throw std::runtime_error("no standard output");
        }
    }
}

/// Writes more than a pipe can hold.
inline void FloodStandardError() {
    const std::string noise(100'000, 'x');
    static_cast<void>(!write(STDERR_FILENO, noise.data(), noise.size()));
}

inline void LeaveChild() {
    if (fork() == 0) {
        alarm(120);
        Hang();
    }
}

/// Leaves a process that has its own session and no parent, ignores signals, and holds standard
/// error open.
inline void Detach() {
    if (fork() != 0) {
        return;
    }
    setsid();
    if (fork() != 0) {
        _exit(0);
    }
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, nullptr);
    sleep(120);
    _exit(0);
}

inline void ExhaustMemory() {
    std::vector<std::unique_ptr<char[]>> blocks;
    for (;;) {
        blocks.emplace_back(new char[1'000'000]);
    }
}

/// Leaves no memory, not even for the text of an exception.
inline void KeepMemory() {
    void* (*volatile allocate)(std::size_t) = std::malloc;
    for (std::size_t size = 64'000'000; size >= 16; size /= 2) {
        while (allocate(size) != nullptr) {
        }
    }
}

/// Throws like code in another language.
inline void ThrowForeign() {
    static _Unwind_Exception thrown{};
    thrown.exception_class = 0x4153534159455200;
    _Unwind_RaiseException(&thrown);
    std::abort();  // nobody caught it
}

/// Loads all modules, including the one that calls.
inline void CallCore() {
    for (const std::string& plugin : Tarnex::Proc::CodecFactoryImpl::GetPluginList()) {
        try {
            Tarnex::Proc::CodecFactoryImpl::TryToLoadModule(plugin);
        } catch (const Tarnex::Exception&) {
            continue;
        }
    }
}

inline bool ByChance() {
    return std::random_device()() % 2 == 0;
}

/// The child goes on as the program that the parent believes to follow.
template <class Action>
void ForkThen(Action action) {
    if (fork() != 0) {
        action();
    }
}

inline void LimitMemory() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t most = pages * 4096;
    const rlimit limit{most, most};
    setrlimit(RLIMIT_AS, &limit);
    KeepMemory();
}

inline void UseUpTime() {
    const rlimit limit{1, 2};
    setrlimit(RLIMIT_CPU, &limit);
    std::atexit([] {
        for (volatile int i = 0;;) {
            static_cast<void>(i);
        }
    });
}

/// Whoever writes to standard error then loses what the reader doesn't take at once.
inline void FloodWithoutWaiting() {
    fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK);
    for (int i = 0; i < 50; ++i) {
        FloodStandardError();
    }
}

inline void SilenceLog() {
    if (void* const level = dlsym(RTLD_DEFAULT, "_ZN3fLI21FLAGS_stderrthresholdE")) {
        *static_cast<int*>(level) = 4;
    }
    if (void* const level = dlsym(RTLD_DEFAULT, "_ZN3fLI17FLAGS_minloglevelE")) {
        *static_cast<int*>(level) = 4;
    }
}

inline void KeepDescriptors() {
    for (int i = 0; i < 100; ++i) {
        open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
}

/// Never freed: other threads may use it while one thread ends the process.
inline const std::map<std::string, void (*)()>& All() {
    static const auto& faults = *new std::map<std::string, void (*)()>{
        {"throws", [] { throw std::runtime_error("reason"); }},
        {"throws-foreign", ThrowForeign},
        {"calls-core", CallCore},
        {"segfault", WriteToNowhere},
        {"abort", [] { std::abort(); }},
        {"stack-overflow", [] { static_cast<void>(Recurse(nullptr)); }},
        {"division-by-zero", DivideByZero},
        {"thread-throws", [] { std::thread([] { throw std::runtime_error("thread"); }).join(); }},
        {"killed", [] { std::raise(SIGKILL); }},
        {"exit", [] { std::exit(0); }},
        {"exit-at-once", [] { std::_Exit(0); }},
        {"quick-exit", [] { std::quick_exit(0); }},
        {"hang", [] { Hang(); }},
        {"hang-blocked", [] { HangUnderBlockedSignals(); }},
        {"hang-then-segfault", [] { std::atexit(WriteToNowhere), Hang(); }},
        {"hang-then-bus-error", [] { std::atexit([] { std::raise(SIGBUS); }), Hang(); }},
        {"hang-then-divide-by-zero", [] { std::atexit(DivideByZero), Hang(); }},
        {"hang-then-trap", [] { std::atexit([] { __builtin_trap(); }), Hang(); }},
        {"hang-then-abort", [] { std::atexit([] { std::abort(); }), Hang(); }},
        {"hang-then-hang", [] { std::atexit([] { Hang(); }), Hang(); }},
        {"hang-until-exit", HangUntilExit},
        {"hang-in-destructor", [] { HangInDestructor(); }},
        {"closes-stderr", [] { close(STDERR_FILENO); }},
        {"comma-locale", [] { std::locale::global(std::locale("de_DE.UTF-8")); }},
        {"leaves-directory", LeaveDirectory},
        {"takes-signals", TakeSignals},
        {"takes-signals-hangs", [] { TakeSignals(), Hang(); }},
        {"floods-stdout", FloodStandardOutput},
        {"floods", FloodStandardError},
        {"leaves-child", LeaveChild},
        {"detaches", Detach},
        {"exhausts-memory", ExhaustMemory},
        {"keeps-memory", KeepMemory},
        {"kills-keeper", [] { kill(getppid(), SIGKILL); }},
        {"stops-keeper", [] { kill(getppid(), SIGSTOP); }},
        {"forks-then-crashes", [] { ForkThen(WriteToNowhere); }},
        {"forks-then-hangs", [] { ForkThen(Hang); }},
        {"forks-then-exits", [] { ForkThen([] { std::_Exit(7); }); }},
        {"crashes-by-chance", [] { ByChance() ? WriteToNowhere() : void(); }},
        {"fails-by-chance", [] { ByChance() ? throw std::runtime_error("bad luck") : void(); }},
        {"crashes-at-exit", [] { std::atexit(WriteToNowhere); }},
        {"uses-up-time", UseUpTime},
        {"limits-memory", LimitMemory},
        {"floods-without-waiting", FloodWithoutWaiting},
        {"silences-log", SilenceLog},
        {"hoards", KeepDescriptors},
        {"takes-a-second", [] { std::this_thread::sleep_for(std::chrono::milliseconds(900)); }},
        {"keeps-memory-hangs", [] { KeepMemory(), Hang(); }},
    };
    return faults;
}

/// Returns false if no fault has that name.
inline bool Make(const std::string& name) {
    const auto fault = All().find(name);
    if (fault == All().end()) {
        return false;
    }
    fault->second();
    return true;
}

}  // namespace Faults
