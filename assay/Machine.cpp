#include "assay/Machine.h"

#include <fmt/chrono.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <boost/filesystem.hpp>

#include <fstream>
#include <thread>

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;

constexpr std::array GPU_MODULES{"nvidia", "amdgpu", "radeon", "i915", "xe", "nouveau"};
constexpr const char* DISPLAY_CLASS = "0x03";  // of PCI devices

/// What follows `key` and a separator in the first such line; an empty key: the first line.
std::string ReadValue(const fs::path& path, const std::string& key) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key)) {
            const std::size_t first = line.find_first_not_of("\t :=\"", key.size());
            const std::size_t end = line.find_last_not_of(" \"") + 1;
            return first < end ? line.substr(first, end - first) : "";
        }
    }
    return "";
}

std::vector<std::string> ListGraphicsCards() {
    std::vector<std::string> cards;
    boost::system::error_code ignored;
    for (const auto& device : fs::directory_iterator("/sys/bus/pci/devices", ignored)) {
        if (ReadValue(device.path() / "class", "").starts_with(DISPLAY_CLASS)) {
            cards.push_back(fmt::format("{} {}", ReadValue(device.path() / "uevent", "DRIVER="),
                                        ReadValue(device.path() / "uevent", "PCI_ID=")));
        }
    }
    return cards;
}

std::string GetKernel() {
    utsname names{};
    uname(&names);
    return names.release;
}

/// A driver of the kernel's own tree has no version but a checksum of its sources.
Json DescribeGpuModules() {
    Json modules = Json::object();
    for (const char* name : GPU_MODULES) {
        const fs::path folder = fs::path("/sys/module") / name;
        if (fs::exists(folder)) {
            const std::string version = ReadValue(folder / "version", "");
            modules[name] = version.empty() ? ReadValue(folder / "srcversion", "") : version;
        }
    }
    return modules;
}

}  // namespace

std::string ToIsoTime(const timespec& time, bool digits) {
    const auto fraction = digits ? fmt::format(".{:09}", time.tv_nsec) : "";
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}{}Z", fmt::gmtime(time.tv_sec), fraction);
}

std::optional<Parent::FileFacts> ReadFileFacts(const fs::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return Parent::FileFacts{path.string(), static_cast<std::uint64_t>(status.st_size),
                             ToIsoTime(status.st_mtim, true), ""};
}

Json DescribeMachine() {
    return {{"system", ReadValue("/etc/os-release", "PRETTY_NAME")},
            {"kernel", GetKernel()},
            {"processor", ReadValue("/proc/cpuinfo", "model name")},
            {"cores", std::thread::hardware_concurrency()},
            {"graphics", ListGraphicsCards()}};
}

Json DescribeEnvironment() {
    return {{"kernel", GetKernel()},
            {"files", DescribeFiles({"/etc/ld.so.cache", "/var/lib/dpkg/status"})},
            {"kernel_modules", DescribeGpuModules()},
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
