#include "assay/Trace.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <boost/filesystem.hpp>
#include <cerrno>
#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "core/support/Exception.h"
#include "platform/Environment.h"
#include "platform/Process.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;
using Parent::Verdict;

/// Stops what gdb runs after $1 seconds. SIGSTOP, because a module may ignore or block anything
/// else. gdb is its parent, so this works also where attaching to a process isn't allowed.
constexpr const char* STOP_LATER = R"(seconds=$1; shift
"$@" &
gdb=$!
(sleep "$seconds"; kill -STOP $(cat /proc/$gdb/task/$gdb/children)) &
wait $gdb)";

/// gdb needs the user's folders and finds its own settings there; these are ours.
const std::vector<std::string> SETTINGS{"-nx",  "-batch",
                                        "-iex", "set debuginfod enabled off",
                                        "-ex",  "set startup-with-shell off",
                                        "-ex",  "set print frame-arguments scalars",
                                        "-ex",  "handle SIGPIPE nostop noprint"};

/// All that the process writes to standard output.
std::string RunProcess(const std::string& program, const std::vector<std::string>& arguments) {
    Platform::Process process(
        {program, arguments, Platform::GetEnvironmentWithout({"GLOG_", "LOCALAPPDATA="}), true});
    std::string text;
    for (;;) {
        std::vector<pollfd> descriptors;
        process.AddTo(descriptors);
        while (poll(descriptors.data(), descriptors.size(), -1) < 0 && errno == EINTR) {
        }
        const auto report = process.TakeReport();
        text += process.ReadOutput();
        process.ReadError();
        if (report) {
            if (report->startError != 0) {
                throw Exception(program + ": " + std::strerror(report->startError));
            }
            return text;
        }
    }
}

/// Throws if it isn't installed.
std::string FindProgram(const std::string& name) {
    std::istringstream folders(Platform::GetEnvironment("PATH").value_or("/usr/bin:/bin"));
    for (std::string folder; std::getline(folders, folder, ':');) {
        const fs::path path = fs::path(folder) / name;
        if (path.is_absolute() && fs::is_regular_file(path)) {
            return path.string();
        }
    }
    throw Exception(name + " isn't installed; the package " + name + " has it");
}

std::vector<std::string> MakeCommand(const Item& item, std::chrono::seconds itemTime) {
    std::vector<std::string> command = SETTINGS;
    const auto execute = [&](const char* text) { command.insert(command.end(), {"-ex", text}); };
    if (item.verdict == Verdict::Ended) {
        execute("catch syscall exit_group");
    }
    execute("run");
    execute(item.verdict == Verdict::Hung ? "thread apply all backtrace" : "backtrace");
    command.emplace_back("--args");
    command.insert(command.end(), item.repro.begin(), item.repro.end());
    command.insert(command.begin(), FindProgram("gdb"));
    if (item.verdict != Verdict::Hung) {
        return command;
    }
    std::vector<std::string> stopped{"/bin/sh", "-c", STOP_LATER, "sh",
                                     fmt::to_string(itemTime.count())};
    stopped.insert(stopped.end(), command.begin(), command.end());
    return stopped;
}

/// The packages of the files, by dpkg's database; none where there is no dpkg.
std::set<std::string> FindPackages(const std::vector<std::string>& files) {
    std::vector<std::string> arguments{"--search"};
    for (const std::string& file : files) {
        boost::system::error_code error;
        const fs::path real = fs::canonical(file, error);
        arguments.push_back(error ? file : real.string());
    }
    std::set<std::string> packages;
    try {
        std::istringstream lines(RunProcess(FindProgram("dpkg-query"), arguments));
        for (std::string line; std::getline(lines, line);) {
            packages.insert(line.substr(0, line.find_first_of(":,")));
        }
    } catch (const Exception&) {
        // Another distribution: the files themselves are named.
    }
    return packages;
}

void PrintMissingSymbols(Platform::Terminal& terminal, const std::vector<std::string>& files) {
    if (files.empty()) {
        return;
    }
    terminal.Line("");
    terminal.Line("Without debug symbols: " + fmt::to_string(fmt::join(files, ", ")));
    if (const auto packages = FindPackages(files); !packages.empty()) {
        terminal.Line(fmt::format("The packages with them: {}-dbgsym (from Debian's debug archive)",
                                  fmt::join(packages, "-dbgsym, ")));
    }
}

}  // namespace

void PrintTrace(Platform::Terminal& terminal, const Item& item, std::chrono::seconds itemTime) {
    if (!EndsRuns(item.verdict) || item.repro.empty()) {
        throw Exception(
            fmt::format("{} didn't crash, end its process or hang: nothing to trace", item.name));
    }
    if (item.verdict == Verdict::Hung) {
        terminal.Line(fmt::format("It is stopped after {} seconds ...", itemTime.count()));
    }
    std::vector<std::string> command = MakeCommand(item, itemTime);
    const std::string program = command.front();
    command.erase(command.begin());
    const auto stacks = FindStacks(RunProcess(program, command));
    if (stacks.empty()) {
        throw Exception(item.name + " came to its end under gdb: it didn't happen again");
    }
    for (const std::string& line : stacks) {
        terminal.Line(line);
    }
    PrintMissingSymbols(terminal, FindWithoutSymbols(stacks));
}

/// A stack frame, a thread's head line, or why the program stopped.
static bool BeginsFrame(std::string_view line) {
    constexpr std::array<std::string_view, 4> BEGINNINGS{"#", "Thread ", "Program received signal ",
                                                         "Catchpoint "};
    return std::ranges::any_of(
        BEGINNINGS, [&](std::string_view beginning) { return line.starts_with(beginning); });
}

std::vector<std::string> FindStacks(const std::string& text) {
    std::vector<std::string> stacks;
    std::istringstream lines(text);
    bool inFrame = false;
    for (std::string line; std::getline(lines, line);) {
        // A long frame goes on in lines that are indented.
        inFrame = BeginsFrame(line) || (inFrame && line.starts_with("    "));
        if (inFrame) {
            stacks.push_back(line);
        }
    }
    const bool hasFrame =
        std::ranges::any_of(stacks, [](const std::string& line) { return line.starts_with("#"); });
    return hasFrame ? stacks : std::vector<std::string>();
}

std::vector<std::string> FindWithoutSymbols(const std::vector<std::string>& stacks) {
    std::set<std::string> files;
    for (const std::string& line : stacks) {
        const std::size_t from = line.rfind(" from /");
        if (from != std::string::npos) {
            files.insert(line.substr(from + std::strlen(" from ")));
        }
    }
    return {files.begin(), files.end()};
}

}  // namespace Tarnex::Assay
