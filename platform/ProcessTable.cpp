#include "platform/ProcessTable.h"

#include <dirent.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace Tarnex::Platform {
namespace {

/// Empty if the process has just gone.
std::string ReadProcessFile(pid_t pid, const char* name) {
    std::ifstream file(fmt::format("/proc/{}/{}", pid, name));
    std::string text;
    std::getline(file, text, '\0');
    return text;
}

}  // namespace

ProcessState GetProcessState(pid_t pid) {
    const std::string text = ReadProcessFile(pid, "stat");
    const std::size_t nameEnd = text.rfind(')');  // A name may contain anything.
    ProcessState state;
    if (nameEnd != std::string::npos) {
        state.pid = pid;
        std::sscanf(text.c_str() + nameEnd,
                    ") %c %d %*d %*d %*d %*d %u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %*d %*d"
                    " %llu",
                    &state.state, &state.parent, &state.flags, &state.started);
    }
    return state;
}

std::vector<ProcessState> FindChildren() {
    std::vector<ProcessState> children;
    const std::unique_ptr<DIR, int (*)(DIR*)> processes(opendir("/proc"), closedir);
    while (const dirent* entry = processes ? readdir(processes.get()) : nullptr) {
        const pid_t pid = std::atoi(entry->d_name);
        const ProcessState state = pid > 0 ? GetProcessState(pid) : ProcessState();
        if (state.parent == getpid()) {
            children.push_back(state);
        }
    }
    return children;
}

std::string NameProcesses(const std::vector<ProcessState>& processes) {
    std::string names;
    for (const ProcessState& process : processes) {
        std::string name = ReadProcessFile(process.pid, "comm");
        name.erase(name.find_last_not_of('\n') + 1);
        names += fmt::format("{}{} {}", names.empty() ? "" : ", ", process.pid, name);
    }
    return names;
}

}  // namespace Tarnex::Platform
