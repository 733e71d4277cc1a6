#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <random>

#include "core/media/FrameTiming.h"
#include "core/support/Exception.h"

namespace Tarnex::Proc {
namespace {

/// Wide enough for the vector instructions of any scaler or coder.
constexpr int ALIGNMENT = 64;

/// The limits of a plane's values.
struct Range {
    int low;
    int high;
};
constexpr Range LUMA{16, 235};
constexpr Range CHROMA{80, 176};

/// The side of the squares in the middle of the picture. Larger than most coders' blocks and not a
/// multiple of them, so that edges fall inside blocks too.
constexpr int SQUARE = 60;

/// More than any coder takes, and far below the point where sizes in bytes overflow an int.
constexpr int MAX_SIDE = 16384;

/// The number of places in the noise where a row can begin.
constexpr int NOISE_STARTS = 4096;
constexpr int NOISE_STEP = 1009;  // puts neighbouring rows far apart

/// The unit of memory. Rows are a multiple of it, so that each plane begins on a block.
struct alignas(ALIGNMENT) Block {
    std::uint8_t bytes[ALIGNMENT];
};

constexpr int Align(int size) {
    return (size + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
}

/// Low at the left, high at the right.
void DrawRamp(const Plane& plane, Range range) {
    for (int x = 0; x < plane.stride; ++x) {
        plane.data[x] =
            static_cast<std::uint8_t>(range.low + x * (range.high - range.low) / plane.stride);
    }
    for (int row = 1; row < plane.height; ++row) {
        std::copy_n(plane.data, plane.stride, plane.data + std::ptrdiff_t{row} * plane.stride);
    }
}

/// Values from 0 to 7. Rows share them: separate noise for each row would cost more than some
/// coders.
std::vector<std::uint8_t> MakeNoise(int size) {
    std::minstd_rand random;  // defined by the standard, so all machines get the same numbers
    std::vector<std::uint8_t> noise(static_cast<std::size_t>(size));
    std::generate(noise.begin(), noise.end(),
                  [&] { return static_cast<std::uint8_t>(random() / 16 % 8); });
    return noise;
}

void DrawLine(std::uint8_t* line, const std::uint8_t* noise, Range range, bool isInverted) {
    for (int x = 0; x < SQUARE; ++x) {
        const int value = isInverted ? range.low + range.high - line[x] : line[x];
        line[x] = static_cast<std::uint8_t>(value + noise[x] - 4);
    }
}

/// Inverts every second square in the middle and adds noise there. The rest stays free of noise,
/// which would make lossless coders several times slower.
void DrawSquares(const Plane& plane, Range range) {
    const std::vector<std::uint8_t> noise = MakeNoise(plane.stride + NOISE_STARTS);
    for (int row = plane.height / 4; row < plane.height - plane.height / 4; ++row) {
        std::uint8_t* line = plane.data + std::ptrdiff_t{row} * plane.stride;
        const std::uint8_t* start = noise.data() + row * NOISE_STEP % NOISE_STARTS;
        for (int x = plane.stride / 4; x + SQUARE <= plane.stride - plane.stride / 4; x += SQUARE) {
            DrawLine(line + x, start + x, range, (row / SQUARE + x / SQUARE) % 2 != 0);
        }
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
            const Range range = &plane == &planes.front() ? LUMA : CHROMA;
            DrawRamp(plane, range);
            DrawSquares(plane, range);
        }
    }

    PixFmt GetPixelFormat() const override { return pixelFormat; }
    FrameInfo GetFrameInfo() const override { return frameInfo; }
    ColorSpace GetColorSpace() const override { return colorSpace; }
    const std::vector<Plane>& GetPlanes() const override { return planes; }

private:
    void AllocatePlanes(std::vector<Plane> layout) {
        std::size_t size = ALIGNMENT;  // scalers read slightly past the last row
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
            throw Exception(fmt::format("Can't create video frames of pixel format {}",
                                        static_cast<int>(format)));
        }
        if (std::min(info.width, info.height) < 1 || std::max(info.width, info.height) > MAX_SIDE) {
            throw Exception(
                fmt::format("Can't create video frames of {}x{} pixels", info.width, info.height));
        }
        return new FrameVideo(space, format, info);
    }
};

}  // namespace

Pointer<IFactoryDataVideo> CreateFactoryDataVideoFF() {
    return new FactoryDataVideo();
}

}  // namespace Tarnex::Proc
