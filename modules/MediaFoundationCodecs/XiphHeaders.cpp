#include "modules/MediaFoundationCodecs/XiphHeaders.h"

#include <cstddef>
#include <span>

#include "core/support/Exception.h"

namespace Tarnex::MediaFoundation {

namespace {

constexpr std::size_t HEADERS = 3;  // identification, comment, setup

/// Reads bytes in order. Throws if they end too early.
class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> data) : data(data) {}

    std::size_t Byte() { return Take(1)[0]; }
    std::size_t Word() {
        const auto bytes = Take(2);
        return static_cast<std::size_t>(bytes[0]) << 8U | bytes[1];
    }
    /// A laced length: the sum of bytes up to and including the first below 255.
    std::size_t LacedSize() {
        std::size_t size = 0;
        std::size_t byte = 255;
        while (byte == 255) {
            byte = Byte();
            size += byte;
        }
        return size;
    }
    Bytes Take(std::size_t size) {
        if (size > data.size()) {
            throw Exception("The extradata with the stream's headers is cut off");
        }
        Bytes taken(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
        data = data.subspan(size);
        return taken;
    }
    Bytes Rest() { return Take(data.size()); }

private:
    std::span<const std::uint8_t> data;
};

// One byte (the number of packets minus one), the lengths of all packets but the last, the packets.
std::vector<Bytes> SplitLaced(Reader reader) {
    reader.Byte();
    const std::size_t first = reader.LacedSize();
    const std::size_t second = reader.LacedSize();
    std::vector<Bytes> headers;
    headers.push_back(reader.Take(first));
    headers.push_back(reader.Take(second));
    headers.push_back(reader.Rest());
    return headers;
}

std::vector<Bytes> SplitCounted(Reader reader) {
    std::vector<Bytes> headers;
    while (headers.size() < HEADERS) {
        headers.push_back(reader.Take(reader.Word()));
    }
    return headers;
}

}  // namespace

std::vector<Bytes> SplitXiphHeaders(const Bytes& extraData) {
    const bool isLaced = !extraData.empty() && extraData.front() == HEADERS - 1;
    return isLaced ? SplitLaced(Reader(extraData)) : SplitCounted(Reader(extraData));
}

Bytes JoinXiphHeaders(const std::vector<Bytes>& headers) {
    Bytes joined;
    for (const Bytes& header : headers) {
        joined.push_back(static_cast<std::uint8_t>(header.size() >> 8U));
        joined.push_back(static_cast<std::uint8_t>(header.size()));
        joined.insert(joined.end(), header.begin(), header.end());
    }
    return joined;
}

}  // namespace Tarnex::MediaFoundation
