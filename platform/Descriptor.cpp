#include "platform/Descriptor.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace Tarnex::Platform {
namespace {

[[noreturn]] void Fail() {
    throw std::system_error(errno, std::generic_category(), "can't make a pipe");
}

/// What takes a standard stream's place would get what is written there.
Descriptor Raise(const Descriptor& low) {
    Descriptor high(fcntl(low.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (high.Get() < 0) {
        Fail();
    }
    return high;
}

Channel ToChannel(int near, int far) {
    const Descriptor lowNear(near);
    const Descriptor lowFar(far);
    Channel channel{Raise(lowNear), Raise(lowFar)};
    fcntl(channel.near.Get(), F_SETFL, O_NONBLOCK);
    return channel;
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(value, other.value);
    return *this;
}

void Descriptor::Close() {
    if (value >= 0) {
        close(std::exchange(value, -1));
    }
}

Channel MakePipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        Fail();
    }
    return ToChannel(ends[0], ends[1]);
}

Channel MakeSockets() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        Fail();
    }
    return ToChannel(ends[0], ends[1]);
}

}  // namespace Tarnex::Platform
