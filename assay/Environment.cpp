#include "assay/Environment.h"

#include <fmt/chrono.h>
#include <sys/stat.h>

#include <thread>

#include "platform/Machine.h"

namespace Tarnex::Assay {

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

Json DescribeMachine() {
    return {{"system", Platform::GetSystemName()},
            {"kernel", Platform::GetKernel()},
            {"processor", Platform::GetProcessor()},
            {"cores", std::thread::hardware_concurrency()},
            {"graphics", Platform::ListGraphicsCards()}};
}

Json DescribeEnvironment() {
    return {{"kernel", Platform::GetKernel()},
            {"files", DescribeFiles({"/etc/ld.so.cache", "/var/lib/dpkg/status"})},
            {"kernel_modules", Platform::GetGraphicsDrivers()},
            {"codec_files", Json::array()}};
}

Json DescribeFiles(const std::vector<std::string>& paths) {
    Json files = Json::array();
    for (const std::string& path : paths) {
        if (const auto facts = ReadFileFacts(path)) {
            files.push_back(ToJson(*facts));
        }
    }
    return files;
}

}  // namespace Tarnex::Assay
