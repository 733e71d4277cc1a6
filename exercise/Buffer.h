#pragma once

#include <cstddef>
#include <span>

namespace Tarnex::Exercise {

/// What lies beside a buffer.
enum class Guard {
    None,    ///< memory that nobody uses: a small overrun has no effect
    After,   ///< an unmapped page: the buffer ends where the page begins
    Before,  ///< an unmapped page: the buffer begins where the page ends
};

const char* ToString(Guard guard);

/// Memory for a plugin's blocks or pictures, aligned to 64 bytes. What a block leaves of its last
/// 64 bytes is filled with a pattern.
class Buffer {
public:
    /// Throws `std::bad_alloc`.
    Buffer(Guard guard, std::size_t capacity);
    ~Buffer();

    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    /// The place for the next block, as near to the guard as its alignment allows. The content is
    /// undefined. `size` is in bytes and at most the capacity.
    std::byte* Place(std::size_t size);

    /// Whether the pattern is still as `Place` wrote it.
    bool IsPaddingWhole() const;

private:
    Guard guard;
    std::size_t capacity;  // whole pages
    std::byte* memory;     // a page, the capacity, a page
    std::span<std::byte> padding;
};

}  // namespace Tarnex::Exercise
