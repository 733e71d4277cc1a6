#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "core/media/FrameTiming.h"
#include "core/support/Exception.h"

namespace Tarnex::Proc {
namespace {

/// Wide enough for the vector instructions of any scaler or coder.
constexpr int ALIGNMENT = 64;

constexpr std::uint8_t BLACK_LUMA = 16;
constexpr int LUMA_RANGE = 219;
constexpr std::uint8_t NEUTRAL_CHROMA = 128;

/// Above what any coder takes, and far below where sizes in bytes overflow an int.
constexpr int MAX_SIDE = 16384;

/// Rows are multiples of it, so that memory of blocks holds whole planes.
struct alignas(ALIGNMENT) Block {
    std::uint8_t bytes[ALIGNMENT];
};

constexpr int Align(int size) {
    return (size + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
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
        DrawRamp(planes.front());
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
        std::memset(memory.get(), NEUTRAL_CHROMA, size);
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

    /// From black at the left to white at the right.
    static void DrawRamp(const Plane& plane) {
        for (int x = 0; x < plane.stride; ++x) {
            plane.data[x] = static_cast<std::uint8_t>(BLACK_LUMA + x * LUMA_RANGE / plane.stride);
        }
        for (int row = 1; row < plane.height; ++row) {
            std::copy_n(plane.data, plane.stride,
                        plane.data + static_cast<std::ptrdiff_t>(row) * plane.stride);
        }
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
