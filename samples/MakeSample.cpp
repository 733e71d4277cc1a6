// Writes a sample file of the codec check: a short clip that our own modules encode.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "core/media/CoreManager.h"
#include "core/media/Factories.h"
#include "core/media/Presets.h"
#include "modules/common/CoderStream.h"

namespace {

using Tarnex::Conf::IPreset;
using Tarnex::Core::CoreManager;
using Tarnex::Proc::ImplNames;
using Tarnex::Proc::Pointer;
using Tarnex::Proc::Property;
namespace Proc = Tarnex::Proc;

// The clips are read once, from their beginning to their end, so that they need no way back.

/// Two pictures, one of which moves over the other: no frame can be predicted without a rest.
class Pictures : public Tarnex::Modules::DecoderStream<Proc::IStreamVideo, Proc::IFrameVideo> {
public:
    explicit Pictures(const std::string& codecId)
        : DecoderStream(nullptr, "Pictures"),
          size(codecId == Proc::IFormatCodecVideo::CODEC_ID_DVVIDEO
                   ? Proc::FrameInfo{720, 576, 1, 1}  // one of the few that DV knows
                   : Proc::FrameInfo{320, 240, 1, 1}) {}

    Pointer<Proc::IFormatCodecVideo> GetFormatCodec() const override {
        Pointer<Proc::IFormatCodecVideo> format = Proc::IFormatCodecVideo::Create();
        format->InitByPixelAspect(size.width, size.height, 1, 1);
        return format;
    }

protected:
    Pointer<Proc::IData> MakeNext() override {
        if (number == FRAMES) {
            return {};
        }
        Pointer<Proc::IFrameVideo> frame =
            Proc::CreateFactoryDataVideoFF()->CreateFrame({1, 1, 1}, Proc::PixFmt::Yuv420p, size);
        for (const Proc::Plane& plane : frame->GetPlanes()) {
            Overlay(plane);
        }
        frame->SetFrameTime(number * FRAME_LENGTH);
        ++number;
        return frame;
    }
    void Restart() override {}

private:
    static constexpr int FRAMES = 6;
    static constexpr int FRAME_LENGTH = 40;

    /// The mean of the picture and itself, moved by some rows and pixels.
    void Overlay(const Proc::Plane& plane) const {
        const std::ptrdiff_t shift = std::ptrdiff_t{number} * (3 * plane.stride + 5);
        const std::ptrdiff_t end = std::ptrdiff_t{plane.height} * plane.stride - shift;
        for (std::ptrdiff_t i = 0; i < end; ++i) {
            plane.data[i] = static_cast<std::uint8_t>((plane.data[i] + plane.data[i + shift]) / 2);
        }
    }

    Proc::FrameInfo size;
    int number = 0;
};

class Sound : public Tarnex::Modules::DecoderStream<Proc::IStreamAudio, Proc::IFrameAudio> {
public:
    Sound() : DecoderStream(nullptr, "Sound") {}

    Pointer<Proc::IFormatCodecAudio> GetFormatCodec() const override {
        Pointer<Proc::IFormatCodecAudio> format = Proc::IFormatCodecAudio::Create();
        format->SetSampleInfo(INFO);
        return format;
    }

protected:
    Pointer<Proc::IData> MakeNext() override {
        if (isRead) {
            return {};
        }
        isRead = true;
        return Proc::CreateFactoryDataAudioFF()->CreateFrame(INFO, BLOCKS);
    }
    void Restart() override {}

private:
    static constexpr Proc::SampleInfo INFO{Proc::SampleFormats::S16, 44100,
                                           Proc::ChannelLayout::Stereo};
    static constexpr int BLOCKS = 2;

    bool isRead = false;
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
        throw Tarnex::Exception("Nobody encodes " + codecId);
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
