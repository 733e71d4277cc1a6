#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace Tarnex::Fuzz {

/// A file in memory that holds the input.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : fd(memfd_create("input", 0)) {
        if (fd < 0 || write(fd, data, size) != static_cast<ssize_t>(size)) {
            std::abort();
        }
    }
    ~MemoryFile() { close(fd); }

    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(fd); }

private:
    int fd;
};

/// Aborts unless the condition holds. The fuzzer reports that.
inline void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace Tarnex::Fuzz
