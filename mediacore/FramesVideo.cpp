#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>

#include "core/media/FrameTiming.h"
#include "core/support/Exception.h"

namespace Tarnex::Proc {
namespace {

/// Wide enough for the vector instructions of any scaler or coder.
constexpr int ALIGNMENT = 64;

/// What a plane's values lie between.
struct Range {
    int low;
    int high;
};
constexpr Range LUMA{16, 235};
constexpr Range CHROMA{80, 176};

/// The side of the squares in the middle of the picture. Larger than the blocks of most coders and
/// no multiple of them, so that edges fall inside blocks too.
constexpr int SQUARE = 60;

/// Above what any coder takes, and far below where sizes in bytes overflow an int.
constexpr int MAX_SIDE = 16384;

constexpr int NOISE_LEVELS = 7;
constexpr int NOISE_STARTS = 4096;

/// A row's noise is a stretch of it: drawing numbers for each pixel would cost more than many a
/// coder.
using Noise = std::array<std::uint8_t, MAX_SIDE + NOISE_STARTS>;

Noise MakeNoise() {
    std::minstd_rand random;  // the standard defines its numbers, so all machines draw the same
    Noise noise;
    for (std::uint8_t& value : noise) {
        value = static_cast<std::uint8_t>(random() / 16 % NOISE_LEVELS);
    }
    return noise;
}

const std::uint8_t* NoiseOfRow(int row) {
    static const Noise NOISE = MakeNoise();
    return NOISE.data() + row * 1009 % NOISE_STARTS;  // 1009: far apart in neighbouring rows
}

/// Rows are multiples of it, so that memory of blocks holds whole planes.
struct alignas(ALIGNMENT) Block {
    std::uint8_t bytes[ALIGNMENT];
};

constexpr int Align(int size) {
    return (size + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
}

/// A row without its noise.
using Pattern = std::vector<std::uint8_t>;

/// From low at the left to high at the right. In the middle half every second square, beginning
/// with the one of the number `first`, is inverted; none if `first` is negative.
Pattern MakePattern(int width, Range range, int first) {
    Pattern pattern(static_cast<std::size_t>(width));
    const int steps = range.high - range.low - NOISE_LEVELS;
    for (int x = 0; x < width; ++x) {
        const bool isMiddle = x >= width / 4 && x < width - width / 4;
        const bool isInverted = first >= 0 && isMiddle && x / SQUARE % 2 == first;
        const int value = x * steps / width;
        pattern[static_cast<std::size_t>(x)] =
            static_cast<std::uint8_t>(range.low + (isInverted ? steps - value : value));
    }
    return pattern;
}

/// A ramp with a chequered square in its middle and a little noise: work for prediction, transform
/// and entropy coding.
void Draw(const Plane& plane, Range range) {
    const Pattern plain = MakePattern(plane.stride, range, -1);
    const Pattern chequered[] = {MakePattern(plane.stride, range, 0),
                                 MakePattern(plane.stride, range, 1)};
    for (int row = 0; row < plane.height; ++row) {
        const bool isMiddle = row >= plane.height / 4 && row < plane.height - plane.height / 4;
        const Pattern& pattern = isMiddle ? chequered[row / SQUARE % 2] : plain;
        std::transform(pattern.begin(), pattern.end(), NoiseOfRow(row),
                       plane.data + std::ptrdiff_t{row} * plane.stride,
                       [](std::uint8_t value, std::uint8_t noise) {
                           return static_cast<std::uint8_t>(value + noise);
                       });
    }
}

class FrameVideo : public FrameTiming<IFrameVideo> {
public:
    FrameVideo(const ColorSpace& space, PixFmt format, const FrameInfo& info)
        : colorSpace(space), pixelFormat(format), frameInfo(info) {
        const int lumaStride = Align(info.width);
        const int chromaStride = Align((info.width + 1) / 2);
        const int chromaHeight = (info.height + 1) / 2;
        AllocatePlanes(format == PixFmt::Nv12
                           ? std::vector<Plane>{{nullptr, lumaStride, info.height},
                                                {nullptr, 2 * chromaStride, chromaHeight}}
                           : std::vector<Plane>{{nullptr, lumaStride, info.height},
                                                {nullptr, chromaStride, chromaHeight},
                                                {nullptr, chromaStride, chromaHeight}});
        for (const Plane& plane : planes) {
            Draw(plane, &plane == &planes.front() ? LUMA : CHROMA);
        }
    }

    PixFmt GetPixelFormat() const override { return pixelFormat; }
    FrameInfo GetFrameInfo() const override { return frameInfo; }
    ColorSpace GetColorSpace() const override { return colorSpace; }
    const std::vector<Plane>& GetPlanes() const override { return planes; }

private:
    void AllocatePlanes(std::vector<Plane> layout) {
        std::size_t size = ALIGNMENT;  // scalers read a little beyond the last row
        for (const Plane& plane : layout) {
            size += PlaneSize(plane);
        }
        memory = std::make_unique_for_overwrite<Block[]>(size / ALIGNMENT);
        auto* next = reinterpret_cast<std::uint8_t*>(memory.get());
        for (Plane& plane : layout) {
            plane.data = next;
            next += PlaneSize(plane);
        }
        planes = std::move(layout);
    }

    static std::size_t PlaneSize(const Plane& plane) {
        return static_cast<std::size_t>(plane.stride) * static_cast<std::size_t>(plane.height);
    }

    ColorSpace colorSpace;
    PixFmt pixelFormat;
    FrameInfo frameInfo;
    std::unique_ptr<Block[]> memory;
    std::vector<Plane> planes;
};

class FactoryDataVideo : public RefCounted<IFactoryDataVideo> {
public:
    Pointer<IFrameVideo> CreateFrame(const ColorSpace& space, PixFmt format,
                                     const FrameInfo& info) override {
        if (format != PixFmt::Nv12 && format != PixFmt::Yuv420p) {
            throw Exception(
                fmt::format("No video frames of pixel format {}", static_cast<int>(format)));
        }
        if (std::min(info.width, info.height) < 1 || std::max(info.width, info.height) > MAX_SIDE) {
            throw Exception(
                fmt::format("No video frames of {} by {} pixels", info.width, info.height));
        }
        return new FrameVideo(space, format, info);
    }
};

}  // namespace

Pointer<IFactoryDataVideo> CreateFactoryDataVideoFF() {
    return new FactoryDataVideo();
}

}  // namespace Tarnex::Proc
