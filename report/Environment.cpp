#include "report/Environment.h"

#include <fmt/chrono.h>
#include <sys/stat.h>

#include <thread>

#include "installation/ModuleFile.h"
#include "platform/Environment.h"
#include "platform/Machine.h"

namespace Tarnex::Reports {

std::string ToIsoTime(const timespec& time, bool digits) {
    const auto fraction = digits ? fmt::format(".{:09}", time.tv_nsec) : "";
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}{}Z", fmt::gmtime(time.tv_sec), fraction);
}

std::optional<Parent::FileFacts> ReadFileFacts(const boost::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return Parent::FileFacts{path.string(), static_cast<std::uint64_t>(status.st_size),
                             ToIsoTime(status.st_mtim, true), ""};
}

void AddFileFacts(std::vector<Parent::Item>& plugins) {
    for (Parent::Item& plugin : plugins) {
        if (plugin.file && plugin.file->modified.empty()) {
            plugin.file = ReadFileFacts(plugin.file->path);
            plugin.verdict = plugin.file ? plugin.verdict : Parent::Verdict::Missing;
        }
        if (plugin.file && plugin.file->buildId.empty()) {
            plugin.file->buildId = Installations::ReadBuildId(plugin.file->path);
        }
    }
}

Json DescribeMachine() {
    return {{"system", Platform::GetSystemName()},
            {"kernel", Platform::GetKernel()},
            {"processor", Platform::GetProcessor()},
            {"cores", std::thread::hardware_concurrency()},
            {"graphics", Platform::ListGraphicsCards()}};
}

Json DescribeEnvironment() {
    Json variables = Json::object();
    for (const char* name : {"LD_LIBRARY_PATH", "LD_PRELOAD"}) {
        variables[name] = Platform::GetEnvironment(name).value_or("");
    }
    return {{"kernel", Platform::GetKernel()},
            {"kernel_modules", Platform::GetGraphicsDrivers()},
            {"graphics", Platform::ListGraphicsCards()},
            {"variables", variables}};
}

}  // namespace Tarnex::Reports
