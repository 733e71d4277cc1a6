#include "assay/Facts.h"

#include <sys/stat.h>
#include <sys/utsname.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <thread>

#include "collect/ModuleFile.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;

constexpr std::array GPU_MODULES{"nvidia", "amdgpu",  "radeon",    "i915",
                                 "xe",     "nouveau", "virtio_gpu"};

std::string ToIsoTime(const timespec& time) {
    tm parts{};
    gmtime_r(&time.tv_sec, &parts);
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text.data() + length, text.size() - length, ".%09ldZ", time.tv_nsec);
    return text.data();
}

std::string ReadLine(const fs::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

/// The text after `key` and a separator in the first line that begins with `key`.
std::string ReadValue(const fs::path& path, const std::string& key, char separator) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (const std::size_t at = line.find(separator);
            line.starts_with(key) && at != std::string::npos) {
            const std::size_t first = line.find_first_not_of(" \t\"", at + 1);
            const std::size_t last = line.find_last_not_of(" \t\"");
            return first == std::string::npos ? "" : line.substr(first, last - first + 1);
        }
    }
    return "";
}

std::vector<fs::path> ListFolder(const fs::path& folder) {
    std::error_code ignored;
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
        paths.push_back(entry.path());
    }
    std::ranges::sort(paths);
    return paths;
}

/// "card0" is a card, "card0-HDMI-A-1" one of its outputs.
bool IsCard(const fs::path& path) {
    const std::string name = path.filename();
    return name.starts_with("card") && name.find('-') == std::string::npos;
}

std::vector<std::string> ListGraphicsCards() {
    std::vector<std::string> cards;
    for (const fs::path& gpu : ListFolder("/proc/driver/nvidia/gpus")) {
        cards.push_back(ReadValue(gpu / "information", "Model", ':'));
    }
    for (const fs::path& card : ListFolder("/sys/class/drm")) {
        const std::string driver = ReadValue(card / "device/uevent", "DRIVER", '=');
        if (IsCard(card) && (driver != "nvidia" || cards.empty())) {
            cards.push_back(driver + " " + ReadValue(card / "device/uevent", "PCI_ID", '='));
        }
    }
    return cards;
}

std::string GetKernel() {
    utsname names{};
    uname(&names);
    return names.release;
}

/// In-tree drivers have no version but a checksum of their sources.
Json DescribeGpuModules() {
    Json modules = Json::object();
    for (const char* name : GPU_MODULES) {
        const fs::path folder = fs::path("/sys/module") / name;
        if (fs::exists(folder)) {
            const std::string version = ReadLine(folder / "version");
            modules[name] = version.empty() ? ReadLine(folder / "srcversion") : version;
        }
    }
    return modules;
}

std::optional<Parent::FileFacts> ReadStatus(const fs::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return Parent::FileFacts{path, static_cast<std::uint64_t>(status.st_size),
                             ToIsoTime(status.st_mtim), ""};
}

}  // namespace

std::optional<Parent::FileFacts> ReadFileFacts(const fs::path& path) {
    auto facts = ReadStatus(path);
    if (facts) {
        facts->buildId = Collect::ReadBuildId(path.string());
    }
    return facts;
}

Json DescribeMachine() {
    return {{"system", ReadValue("/etc/os-release", "PRETTY_NAME", '=')},
            {"kernel", GetKernel()},
            {"processor", ReadValue("/proc/cpuinfo", "model name", ':')},
            {"cores", std::thread::hardware_concurrency()},
            {"graphics", ListGraphicsCards()}};
}

Json DescribeFiles(const std::vector<std::string>& paths) {
    Json files = Json::array();
    for (const std::string& path : paths) {
        if (const auto facts = ReadStatus(path)) {
            files.push_back(ToJson(*facts));
        }
    }
    return files;
}

Json DescribeEnvironment() {
    return {{"kernel", GetKernel()},
            {"files", DescribeFiles({"/etc/ld.so.cache", "/var/lib/dpkg/status"})},
            {"kernel_modules", DescribeGpuModules()},
            {"codec_files", Json::array()}};
}

}  // namespace Tarnex::Assay
