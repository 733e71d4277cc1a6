// Writes one sample file for the codec check: a short clip, encoded by our own modules.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "core/media/CoreManager.h"
#include "core/media/Factories.h"
#include "core/media/Presets.h"
#include "core/media/StreamBase.h"

namespace {

using Tarnex::Conf::IPreset;
using Tarnex::Core::CoreManager;
using Tarnex::Proc::ImplNames;
using Tarnex::Proc::Pointer;
using Tarnex::Proc::Property;
namespace Proc = Tarnex::Proc;

/// A few frames that can be read once, from first to last. The clip can't seek.
template <class Interface, class Frame>
class Clip : public Proc::StreamBase<Interface> {
public:
    std::int64_t GetDuration() const override { return 0; }
    std::int64_t GetPosition() const override { return 0; }
    void Seek(std::int64_t, Pointer<Proc::IRefCountable>) override {}
    Pointer<Proc::IData> ReadNext() override { return GetNextFrame(); }
    Pointer<Frame> GetNextFrame() override {
        return number < count ? MakeFrame(number++) : Pointer<Frame>();
    }

protected:
    explicit Clip(int count) : Proc::StreamBase<Interface>("Clip"), count(count) {}

    virtual Pointer<Frame> MakeFrame(int number) const = 0;

private:
    int count;
    int number = 0;
};

/// A picture moving over itself, so that no frame can be predicted without a residual.
class Pictures : public Clip<Proc::IStreamVideo, Proc::IFrameVideo> {
public:
    explicit Pictures(const std::string& codecId)
        : Clip(FRAMES),
          size(codecId == Proc::IFormatCodecVideo::CODEC_ID_DVVIDEO
                   ? Proc::FrameInfo{720, 576, 1, 1}  // one of the few sizes that DV allows
                   : Proc::FrameInfo{320, 240, 1, 1}) {}

    Pointer<Proc::IFormatCodecVideo> GetFormatCodec() const override {
        Pointer<Proc::IFormatCodecVideo> format = Proc::IFormatCodecVideo::Create();
        format->InitByPixelAspect(size.width, size.height, 1, 1);
        return format;
    }

protected:
    Pointer<Proc::IFrameVideo> MakeFrame(int number) const override {
        Pointer<Proc::IFrameVideo> frame =
            Proc::CreateFactoryDataVideoFF()->CreateFrame({1, 1, 1}, Proc::PixFmt::Yuv420p, size);
        for (const Proc::Plane& plane : frame->GetPlanes()) {
            Overlay(plane, number);
        }
        frame->SetFrameTime(std::int64_t{number} * FRAME_LENGTH);
        return frame;
    }

private:
    static constexpr int FRAMES = 6;
    static constexpr int FRAME_LENGTH = 40;

    /// Averages the picture with a copy of itself, shifted by some rows and pixels.
    static void Overlay(const Proc::Plane& plane, int number) {
        const std::ptrdiff_t shift = std::ptrdiff_t{number} * (3 * plane.stride + 5);
        const std::ptrdiff_t end = std::ptrdiff_t{plane.height} * plane.stride - shift;
        for (std::ptrdiff_t i = 0; i < end; ++i) {
            plane.data[i] = static_cast<std::uint8_t>((plane.data[i] + plane.data[i + shift]) / 2);
        }
    }

    Proc::FrameInfo size;
};

class Sound : public Clip<Proc::IStreamAudio, Proc::IFrameAudio> {
public:
    Sound() : Clip(1) {}

    Pointer<Proc::IFormatCodecAudio> GetFormatCodec() const override {
        Pointer<Proc::IFormatCodecAudio> format = Proc::IFormatCodecAudio::Create();
        format->SetSampleInfo(INFO);
        return format;
    }

protected:
    Pointer<Proc::IFrameAudio> MakeFrame(int /*number*/) const override {
        return Proc::CreateFactoryDataAudioFF()->CreateFrame(INFO, BLOCKS);
    }

private:
    static constexpr Proc::SampleInfo INFO{Proc::SampleFormats::S16, 44100,
                                           Proc::ChannelLayout::Stereo};
    static constexpr int BLOCKS = 2;
};

Property MakeSettings(const char* kind, const std::string& codecId, const std::string& options) {
    Property settings(kind);
    settings.Add(Property(IPreset::ITEM_CODEC_ID, codecId));
    settings.Add(Property(IPreset::ITEM_OPTIONS, options));
    return settings;
}

Pointer<Proc::ICodedStream> Encode(const std::string& codecId, const std::string& options) {
    const Pointer<Proc::ICodecFactory> factory = CoreManager::Instance().GetCodecFactory();
    if (Proc::IsVideoCodec(codecId)) {
        return factory->CreateVideoEncoder(
            new Pictures(codecId), MakeSettings(IPreset::KEY_FILTER_VIDEO_CODEC, codecId, options),
            ImplNames::FFMPEG, {});
    }
    return factory->CreateAudioEncoder(
        new Sound(), MakeSettings(IPreset::KEY_FILTER_AUDIO_CODEC, codecId, options),
        ImplNames::FFMPEG, {});
}

void MakeSample(const std::string& file, const std::string& codecId, const std::string& options) {
    CoreManager& core = CoreManager::Instance();
    core.GetComputingResourceManager()->computingResourcesFlag = true;  // one thread: same bytes
    core.Initialize({}, {}, nullptr, nullptr, true);
    core.WaitUntilInitialized();
    const Pointer<Proc::ICodedStream> stream = Encode(codecId, options);
    if (!stream) {
        throw Tarnex::Exception("No started module encodes " + codecId);
    }
    Proc::MuxerFactoryImpl::WriteFile(file, stream);
    core.Uninitialize();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "Usage: MakeSample FILE CODEC_ID OPTIONS\n");
        return 1;
    }
    try {
        MakeSample(argv[1], argv[2], argv[3]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "MakeSample: %s\n", failure.what());
        return 1;
    }
    return 0;
}
