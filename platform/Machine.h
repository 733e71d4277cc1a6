#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Tarnex::Platform {

/// The kernel's release.
std::string GetKernel();

/// The name and version of the operating system; empty if it doesn't tell.
std::string GetSystemName();

/// The model of the first processor; empty if the kernel doesn't tell.
std::string GetProcessor();

/// The driver and the PCI ids of each graphics card.
std::vector<std::string> ListGraphicsCards();

/// By name, the version of each loaded graphics driver. A driver of the kernel's own tree has no
/// version; then the checksum of its sources.
std::map<std::string, std::string> GetGraphicsDrivers();

/// In kB; more than any machine has if the kernel doesn't tell.
std::uint64_t GetAvailableMemory();

}  // namespace Tarnex::Platform
