#include "core/media/Formats.h"

#include <utility>

namespace Tarnex::Proc {
namespace {

/// The common part of video and audio formats.
template <class Interface>
class FormatCodec : public RefCounted<Interface> {
public:
    Property GetProperty() const override { return property; }
    void SetProperty(Property newProperty) override { property = std::move(newProperty); }
    void SetContainerName(const std::string& /*name*/) override {}
    std::string GetCodecID() const override { return codecId; }
    void SetCodecID(const std::string& id) override { codecId = id; }
    const std::vector<std::uint8_t>& GetExtraData() const override { return extraData; }
    void SetExtraData(std::vector<std::uint8_t> data) override { extraData = std::move(data); }

private:
    Property property;
    std::string codecId;
    std::vector<std::uint8_t> extraData;
};

class FormatCodecVideo : public FormatCodec<IFormatCodecVideo> {
public:
    FrameInfo GetFrameInfo() const override { return frameInfo; }
    void InitByPixelAspect(int width, int height, int aspectX, int aspectY) override {
        frameInfo = {width, height, aspectX, aspectY};
    }
    PixFmt GetPixelFormat() const override { return pixelFormat; }
    void SetPixelFormat(PixFmt format) override { pixelFormat = format; }
    FrameRate GetFrameRate() const override { return frameRate; }
    void SetFrameRate(int numerator, int denominator) override {
        frameRate = {numerator, denominator};
    }
    void SetImageFlag(bool /*isImage*/) override {}
    ColorSpace GetColorSpace() const override { return colorSpace; }
    void SetColorSpace(const ColorSpace& space) override { colorSpace = space; }

private:
    FrameInfo frameInfo;
    PixFmt pixelFormat = PixFmt::Yuv420p;
    FrameRate frameRate;
    ColorSpace colorSpace{1, 1, 1};
};

class FormatCodecAudio : public FormatCodec<IFormatCodecAudio> {
public:
    std::string GetBitrateMode() const override { return bitrateMode; }
    void SetBitrateMode(const std::string& mode) override { bitrateMode = mode; }
    SampleInfo GetSampleInfo() const override { return sampleInfo; }
    void SetSampleInfo(const SampleInfo& info) override { sampleInfo = info; }
    std::int64_t GetBitrate() const override { return bitrate; }
    void SetBitrate(std::int64_t newBitrate) override { bitrate = newBitrate; }

private:
    std::string bitrateMode;
    SampleInfo sampleInfo;
    std::int64_t bitrate = 0;
};

}  // namespace

Pointer<IFormatCodecVideo> IFormatCodecVideo::Create() {
    return new FormatCodecVideo();
}

Pointer<IFormatCodecAudio> IFormatCodecAudio::Create() {
    return new FormatCodecAudio();
}

}  // namespace Tarnex::Proc
