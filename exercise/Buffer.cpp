#include "exercise/Buffer.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <new>

namespace Tarnex::Exercise {
namespace {

constexpr std::size_t PAGE = 4096;
constexpr std::size_t ALIGNMENT = 64;  // a cache line; enough for every vector unit
constexpr std::byte PATTERN{0xA5};     // a float that is small, negative and odd to the eye

constexpr std::size_t RoundUp(std::size_t size, std::size_t unit) {
    return (size + unit - 1) / unit * unit;
}

}  // namespace

const char* ToString(Guard guard) {
    constexpr std::array NAMES{"", "unmapped page after the buffers",
                               "unmapped page before the buffers"};
    return NAMES.at(static_cast<std::size_t>(guard));
}

Buffer::Buffer(Guard guard, std::size_t capacity)
    : guard(guard), capacity(RoundUp(std::max<std::size_t>(capacity, 1), PAGE)) {
    void* mapped = mmap(nullptr, this->capacity + 2 * PAGE, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        throw std::bad_alloc();
    }
    memory = static_cast<std::byte*>(mapped);
    if (guard != Guard::None) {
        mprotect(memory, PAGE, PROT_NONE);
        mprotect(memory + PAGE + this->capacity, PAGE, PROT_NONE);
    }
}

Buffer::~Buffer() {
    munmap(memory, capacity + 2 * PAGE);
}

std::byte* Buffer::Place(std::size_t size) {
    const std::size_t whole = RoundUp(size, ALIGNMENT);
    std::byte* begin = memory + PAGE + (guard == Guard::After ? capacity - whole : 0);
    padding = {begin + size, whole - size};
    std::ranges::fill(padding, PATTERN);
    return begin;
}

bool Buffer::IsPaddingWhole() const {
    return std::ranges::all_of(padding, [](std::byte byte) { return byte == PATTERN; });
}

}  // namespace Tarnex::Exercise
