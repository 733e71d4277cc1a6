#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/Export.h"
#include "core/media/MediaTypes.h"
#include "core/media/RefCountable.h"

namespace Tarnex::Proc {

/// Anything a stream delivers. Times and lengths are stream time, in milliseconds.
class TARNEX_TYPE IData : public virtual IRefCountable {};

class TARNEX_TYPE IFrame : public IData {
public:
    virtual std::int64_t GetFrameLength() const = 0;
    virtual void SetFrameLength(std::int64_t length) = 0;
    virtual void SetFrameTime(std::int64_t time) = 0;
    /// Makes the content readable. Frames of the core's own factories are readable at once.
    virtual void PrepareFrame() = 0;
    virtual std::int64_t GetFrameTime() const = 0;
};

/// One plane of a picture: `height` rows, `stride` bytes apart.
struct Plane {
    std::uint8_t* data;
    int stride;
    int height;
};

class TARNEX_TYPE IFrameVideo : public IFrame {
public:
    virtual PixFmt GetPixelFormat() const = 0;
    virtual FrameInfo GetFrameInfo() const = 0;
    virtual ColorSpace GetColorSpace() const = 0;
    /// The planes in the order of the pixel format. The frame owns the memory.
    virtual const std::vector<Plane>& GetPlanes() const = 0;
};

class TARNEX_TYPE IFrameAudio : public IFrame {
public:
    virtual SampleInfo GetSampleInfo() const = 0;
    /// The number of samples per channel.
    virtual std::size_t GetSampleCount() const = 0;
    /// The samples, channels interleaved. The frame owns the memory.
    virtual std::uint8_t* GetSamples() const = 0;
};

/// One packet of a coded stream.
class TARNEX_TYPE IPacket : public IData {
public:
    virtual const std::uint8_t* GetData() const = 0;
    virtual std::size_t GetSize() const = 0;
    virtual std::int64_t GetTime() const = 0;
    virtual bool IsKey() const = 0;
};

/// Creates frames of one picture, identical in every run: a gradient, edges and a little noise.
/// Thread-bound: each thread needs its own factory.
class TARNEX_TYPE IFactoryDataVideo : public virtual IRefCountable {
public:
    virtual Pointer<IFrameVideo> CreateFrame(const ColorSpace& space, PixFmt format,
                                             const FrameInfo& info) = 0;
};

/// Creates frames of one sound, identical in every run: tones and a little noise. Thread-bound:
/// each thread needs its own factory.
class TARNEX_TYPE IFactoryDataAudio : public virtual IRefCountable {
public:
    /// A frame of `blocks` times `SAMPLES_PER_BLOCK` samples per channel.
    virtual Pointer<IFrameAudio> CreateFrame(const SampleInfo& info, int blocks) = 0;

    /// Enough input to make every audio coder produce output.
    static constexpr int SAMPLES_PER_BLOCK = 8192;
};

TARNEX_API Pointer<IFactoryDataVideo> CreateFactoryDataVideoFF();
TARNEX_API Pointer<IFactoryDataAudio> CreateFactoryDataAudioFF();

}  // namespace Tarnex::Proc
