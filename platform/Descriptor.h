#pragma once

#include <utility>

namespace Tarnex::Platform {

/// Owns a file descriptor.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int value) : value(value) {}
    Descriptor(Descriptor&& other) noexcept : value(std::exchange(other.value, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { Close(); }

    void Close();
    int Get() const { return value; }  ///< -1 if there is none

private:
    int value = -1;
};

/// Two connected descriptors above the standard streams, closed when another program is executed.
struct Channel {
    Descriptor near;
    Descriptor far;
};

/// What is written into `far` is read from `near`, without waiting. Throws `std::system_error`.
Channel MakePipe();

/// Messages in both directions, which keep their borders. `near` doesn't wait. Unlike a pipe it
/// can't be opened by another process. Throws `std::system_error`.
Channel MakeSockets();

}  // namespace Tarnex::Platform
