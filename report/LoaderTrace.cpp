#include "report/LoaderTrace.h"

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string_view>

#include "platform/Environment.h"
#include "report/Command.h"

namespace Tarnex::Reports {
namespace {

constexpr std::size_t SIDE_BY_SIDE = 8;

/// The loader that this program was started with, by the program's own headers.
std::string GetLoader() {
    std::string loader;
    const auto read_main_program = [](dl_phdr_info* info, std::size_t, void* found) {
        const auto* begin = info->dlpi_phdr;
        const auto* end = begin + info->dlpi_phnum;
        const auto find = [&](ElfW(Word) type) {
            return std::find_if(begin, end,
                                [&](const ElfW(Phdr) & header) { return header.p_type == type; });
        };
        const auto* headers = find(PT_PHDR);
        const auto* interpreter = find(PT_INTERP);
        if (headers != end && interpreter != end) {
            *static_cast<std::string*>(found) =
                reinterpret_cast<const char*>(begin) + (interpreter->p_vaddr - headers->p_vaddr);
        }
        return 1;  // The main program is the first, and the only one of interest.
    };
    dl_iterate_phdr(read_main_program, &loader);
    return loader;
}

/// Lines like "\tlibz.so.1 => /lib/libz.so.1 (0x7f...)", "\tlibx.so => not found", "\t/lib/y.so
/// (0x7f...)".
LoaderTrace Parse(const std::string& text) {
    LoaderTrace trace;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t arrow = line.find(" => ");
        const std::size_t first = arrow == std::string::npos ? 1 : arrow + 4;
        const std::size_t end = line.rfind(" (0x");
        if (!line.starts_with('\t') || first > line.size()) {
            continue;
        }
        if (arrow != std::string::npos) {
            trace.names.insert(line.substr(1, arrow - 1));
        }
        if (end != std::string::npos && end > first && line[first] == '/') {
            trace.files.insert(line.substr(first, end - first));
        }
    }
    return trace;
}

std::unique_ptr<Platform::Process> Start(const std::string& module) {
    Platform::ProcessStart start;
    start.program = GetLoader();
    start.arguments = {module};
    start.environment = Platform::GetEnvironmentWithout({"LD_TRACE_", "LD_DEBUG", "LD_WARN"});
    start.environment.emplace_back("LD_TRACE_LOADED_OBJECTS=1");
    start.keepOutput = true;
    return std::make_unique<Platform::Process>(start);
}

}  // namespace

std::vector<LoaderTrace> TraceLoader(const std::vector<std::string>& modules) {
    std::vector<LoaderTrace> traces;
    for (std::size_t first = 0; first < modules.size(); first += SIDE_BY_SIDE) {
        std::vector<std::unique_ptr<Platform::Process>> processes;
        for (std::size_t i = first; i < std::min(first + SIDE_BY_SIDE, modules.size()); ++i) {
            processes.push_back(Start(modules[i]));
        }
        for (const auto& process : processes) {
            traces.push_back(Parse(AwaitOutput(*process)));
        }
    }
    return traces;
}

}  // namespace Tarnex::Reports
