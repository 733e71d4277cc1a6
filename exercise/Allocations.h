#pragma once

#include <cstddef>

namespace Tarnex::Exercise {

/// While it lives, calls of its thread that allocate or free memory are counted. Sanitizers have an
/// allocator of their own; with them nothing is counted.
class AllocationWatch {
public:
    AllocationWatch();
    ~AllocationWatch();

    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;
};

/// While it lives, its thread's calls aren't counted: a plugin called the host, which allocates.
class AllocationPause {
public:
    AllocationPause();
    ~AllocationPause();

    AllocationPause(const AllocationPause&) = delete;
    AllocationPause& operator=(const AllocationPause&) = delete;

private:
    bool wasWatching;
};

/// Returns what was counted since the last call, in all threads.
std::size_t TakeAllocations();

}  // namespace Tarnex::Exercise
