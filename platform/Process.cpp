#include "platform/Process.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "platform/Keeper.h"

namespace Tarnex::Platform {
namespace {

/// In bytes, so that a process that never stops writing doesn't keep its reader busy.
constexpr std::size_t MAX_READ = 1'000'000;
constexpr int AWAIT_MILLISECONDS = 50;

/// Where programs keep the user's files, below the home.
constexpr std::array<std::pair<const char*, const char*>, 5> HOME_VARIABLES{
    {{"HOME", ""},
     {"XDG_CONFIG_HOME", "/.config"},
     {"XDG_DATA_HOME", "/.local/share"},
     {"XDG_STATE_HOME", "/.local/state"},
     {"XDG_CACHE_HOME", "/.cache"}}};

ProcessStart WithHome(ProcessStart start, const std::string& home) {
    for (const auto& [variable, folder] : HOME_VARIABLES) {
        const std::string beginning = std::string(variable) + "=";
        std::erase_if(start.environment,
                      [&](const std::string& text) { return text.starts_with(beginning); });
        start.environment.push_back(beginning + home + folder);
    }
    return start;
}

}  // namespace

Process::Process(const ProcessStart& start) {
    Channel errors = MakePipe();
    Channel outputs = start.keepOutput ? MakePipe() : Channel();
    Channel sockets = MakeSockets();
    keeper.emplace(
        StartKeeper(start.ownHome ? WithHome(start, folder.path.native()) : start, folder,
                    {std::move(sockets.far), std::move(errors.far), std::move(outputs.far)}));
    error = std::move(errors.near);
    output = std::move(outputs.near);
    channel = std::move(sockets.near);
}

Process::~Process() {
    End();
    AwaitReport();
}

void Process::AddTo(std::vector<pollfd>& descriptors) const {
    const bool begun = program || result || lost;
    descriptors.push_back({begun ? error.Get() : -1, POLLIN, 0});
    descriptors.push_back({begun ? output.Get() : -1, POLLIN, 0});
    // The channel of a lost keeper stays readable for ever.
    descriptors.push_back({lost ? -1 : channel.Get(), POLLIN, 0});
}

std::optional<pid_t> Process::GetProgram() {
    Receive();
    return program;
}

std::string Process::Read(Descriptor& descriptor) {
    Receive();
    std::string text;
    std::array<char, 16384> buffer;
    ssize_t size = program || result ? 1 : -1;
    while (descriptor.Get() >= 0 && text.size() < MAX_READ && size > 0) {
        size = read(descriptor.Get(), buffer.data(), buffer.size());
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
    if (size == 0) {
        descriptor.Close();
    }
    return text;
}

void Process::Receive() {
    KeeperMessage message;
    ssize_t size = -1;
    while (!result && (size = recv(channel.Get(), &message, sizeof message, 0)) > 0) {
        if (message.program > 0) {
            program = message.program;
        }
        if (message.last) {
            result = message.report;
            program = result->startError == 0 ? program : std::nullopt;
        }
    }
    lost = lost || size == 0;
}

std::optional<ProcessReport> Process::TakeReport() {
    Receive();
    lost = lost || (!result && keeper->IsStopped());
    if (!result && lost && keeper->EndOrphans()) {
        folder.Remove(folder.GetDescriptor());
        result.emplace(ProcessReport{});
        result->status = keeper->GetStatus(program.value_or(-1)).value_or(SIGKILL);
        result->keeperLost = true;
        result->time = std::chrono::steady_clock::now();
        keeper->GetSurvivors().copy(result->survivors, sizeof result->survivors - 1);
    }
    return result;
}

ProcessReport Process::AwaitReport() {
    while (!TakeReport()) {
        pollfd event{channel.Get(), POLLIN, 0};
        poll(&event, 1, AWAIT_MILLISECONDS);
    }
    return *result;
}

void Process::End() {
    shutdown(channel.Get(), SHUT_WR);
}

std::string SignalName(int signal) {
    const char* name = sigabbrev_np(signal);
    return name == nullptr ? "signal " + std::to_string(signal) : std::string("SIG") + name;
}

}  // namespace Tarnex::Platform
