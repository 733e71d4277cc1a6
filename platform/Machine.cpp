#include "platform/Machine.h"

#include <sys/utsname.h>

#include <array>
#include <boost/filesystem.hpp>
#include <fstream>

namespace Tarnex::Platform {
namespace {

namespace fs = boost::filesystem;

constexpr std::array GPU_MODULES{"nvidia", "amdgpu", "radeon", "i915", "xe", "nouveau"};
constexpr const char* DISPLAY_CLASS = "0x03";  // of PCI devices

/// What follows `key` and a separator in the first such line; an empty key: the first line.
std::string ReadValue(const fs::path& path, const std::string& key) {
    std::ifstream file(path.native());
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key)) {
            const std::size_t first = line.find_first_not_of("\t :=\"", key.size());
            const std::size_t end = line.find_last_not_of(" \"") + 1;
            return first < end ? line.substr(first, end - first) : "";
        }
    }
    return "";
}

}  // namespace

std::string GetKernel() {
    utsname names{};
    uname(&names);
    return names.release;
}

std::string GetSystemName() {
    return ReadValue("/etc/os-release", "PRETTY_NAME");
}

std::string GetProcessor() {
    return ReadValue("/proc/cpuinfo", "model name");
}

std::vector<std::string> ListGraphicsCards() {
    std::vector<std::string> cards;
    boost::system::error_code ignored;
    for (const auto& device : fs::directory_iterator("/sys/bus/pci/devices", ignored)) {
        if (ReadValue(device.path() / "class", "").starts_with(DISPLAY_CLASS)) {
            const fs::path facts = device.path() / "uevent";
            cards.push_back(ReadValue(facts, "DRIVER=") + " " + ReadValue(facts, "PCI_ID="));
        }
    }
    return cards;
}

std::map<std::string, std::string> GetGraphicsDrivers() {
    std::map<std::string, std::string> drivers;
    for (const char* name : GPU_MODULES) {
        const fs::path folder = fs::path("/sys/module") / name;
        if (fs::exists(folder)) {
            const std::string version = ReadValue(folder / "version", "");
            drivers[name] = version.empty() ? ReadValue(folder / "srcversion", "") : version;
        }
    }
    return drivers;
}

std::uint64_t GetAvailableMemory() {
    const std::string value = ReadValue("/proc/meminfo", "MemAvailable");
    return value.empty() ? UINT64_MAX : std::strtoull(value.c_str(), nullptr, 10);
}

}  // namespace Tarnex::Platform
