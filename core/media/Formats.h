#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/MediaTypes.h"
#include "core/media/Property.h"
#include "core/media/RefCountable.h"

namespace Tarnex::Proc {

inline constexpr char TAG_BITRATE_MODE_CBR[] = "CBR";

/// What all stream descriptions have in common. Thread-bound: one thread fills in a format, then
/// hands it over.
class TARNEX_TYPE IFormat : public virtual IRefCountable {
public:
    virtual Property GetProperty() const = 0;
    virtual void SetProperty(Property property) = 0;
    /// For whoever writes containers; nothing here reads it.
    virtual void SetContainerName(const std::string& name) = 0;
};

/// Describes a coded stream, or a stream that is to be encoded.
class TARNEX_TYPE IFormatCodec : public IFormat {
public:
    /// Empty if the stream isn't coded.
    virtual std::string GetCodecID() const = 0;
    virtual void SetCodecID(const std::string& codecId) = 0;

    /// What a decoder needs before the first packet, in the codec's own form. Often empty.
    virtual const std::vector<std::uint8_t>& GetExtraData() const = 0;
    virtual void SetExtraData(std::vector<std::uint8_t> data) = 0;
};

class TARNEX_TYPE IFormatCodecVideo : public IFormatCodec {
public:
    static constexpr char CODEC_ID_H263[] = "CODEC_ID_H263";
    static constexpr char CODEC_ID_DVVIDEO[] = "CODEC_ID_DVVIDEO";
    static constexpr char CODEC_ID_H265[] = "CODEC_ID_H265";

    TARNEX_API static Pointer<IFormatCodecVideo> Create();

    virtual FrameInfo GetFrameInfo() const = 0;
    virtual void InitByPixelAspect(int width, int height, int aspectX, int aspectY) = 0;
    virtual PixFmt GetPixelFormat() const = 0;
    virtual void SetPixelFormat(PixFmt format) = 0;
    virtual FrameRate GetFrameRate() const = 0;
    virtual void SetFrameRate(int numerator, int denominator) = 0;
    /// For whoever tells a picture from a film; nothing here does.
    virtual void SetImageFlag(bool isImage) = 0;
    virtual ColorSpace GetColorSpace() const = 0;
    virtual void SetColorSpace(const ColorSpace& space) = 0;
};

class TARNEX_TYPE IFormatCodecAudio : public IFormatCodec {
public:
    static constexpr char CODEC_ID_AC3[] = "CODEC_ID_AC3";

    TARNEX_API static Pointer<IFormatCodecAudio> Create();

    virtual std::string GetBitrateMode() const = 0;
    virtual void SetBitrateMode(const std::string& mode) = 0;
    virtual SampleInfo GetSampleInfo() const = 0;
    virtual void SetSampleInfo(const SampleInfo& info) = 0;
    /// In bits per second.
    virtual std::int64_t GetBitrate() const = 0;
    virtual void SetBitrate(std::int64_t bitrate) = 0;
};

}  // namespace Tarnex::Proc
