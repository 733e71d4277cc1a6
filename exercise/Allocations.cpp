#include "exercise/Allocations.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>

namespace {

// Constant initialisation: they are used before the first constructor.
thread_local bool isWatching = false;
std::atomic<std::size_t> calls{0};

}  // namespace

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

// The program's own functions come before the C library's, for all libraries of the process. These
// names of the C library do the work.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

void Count() {
    if (isWatching) {
        calls.fetch_add(1, std::memory_order_relaxed);
    }
}

}  // namespace

#define ASSAYER_VISIBLE extern "C" __attribute__((visibility("default")))

ASSAYER_VISIBLE void* malloc(std::size_t size) noexcept {
    Count();
    return __libc_malloc(size);
}

ASSAYER_VISIBLE void* calloc(std::size_t count, std::size_t size) noexcept {
    Count();
    return __libc_calloc(count, size);
}

ASSAYER_VISIBLE void* realloc(void* memory, std::size_t size) noexcept {
    Count();
    return __libc_realloc(memory, size);
}

ASSAYER_VISIBLE void* memalign(std::size_t alignment, std::size_t size) noexcept {
    Count();
    return __libc_memalign(alignment, size);
}

ASSAYER_VISIBLE void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return memalign(alignment, size);
}

ASSAYER_VISIBLE int posix_memalign(void** memory, std::size_t alignment,
                                   std::size_t size) noexcept {
    if (alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0 || alignment == 0) {
        return EINVAL;
    }
    void* allocated = memalign(alignment, size);
    if (allocated == nullptr) {
        return ENOMEM;
    }
    *memory = allocated;
    return 0;
}

ASSAYER_VISIBLE void free(void* memory) noexcept {
    if (memory != nullptr) {
        Count();
    }
    __libc_free(memory);
}

#endif

namespace Tarnex::Exercise {

AllocationWatch::AllocationWatch() {
    isWatching = true;
}

AllocationWatch::~AllocationWatch() {
    isWatching = false;
}

AllocationPause::AllocationPause() : wasWatching(isWatching) {
    isWatching = false;
}

AllocationPause::~AllocationPause() {
    isWatching = wasWatching;
}

std::size_t TakeAllocations() {
    return calls.exchange(0);
}

}  // namespace Tarnex::Exercise
