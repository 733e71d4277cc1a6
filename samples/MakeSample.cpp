// Writes a sample file of the codec check: a short clip that our own modules encode.
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
namespace Proc = Tarnex::Proc;

constexpr std::int64_t FRAMES = 5;
constexpr std::int64_t FRAME_LENGTH = 40;

/// A few frames in a row. Deriving classes make them.
template <class Interface, class Frame>
class Clip : public Tarnex::Modules::DecoderStream<Interface, Frame> {
public:
    Clip() : Tarnex::Modules::DecoderStream<Interface, Frame>(nullptr, "Clip") {}

    std::int64_t GetDuration() const override { return FRAMES * FRAME_LENGTH; }
    std::int64_t GetPosition() const override { return position; }
    void Seek(std::int64_t newPosition, Pointer<Proc::IRefCountable>) override {
        position = newPosition;
    }

protected:
    virtual Pointer<Frame> MakeFrame() const = 0;

    Pointer<Proc::IData> MakeNext() override {
        if (position >= GetDuration()) {
            return {};
        }
        Pointer<Frame> frame = MakeFrame();
        frame->SetFrameTime(position);
        position += FRAME_LENGTH;
        return frame;
    }
    void Restart() override {}

private:
    std::int64_t position = 0;
};

class Pictures : public Clip<Proc::IStreamVideo, Proc::IFrameVideo> {
public:
    Pointer<Proc::IFormatCodecVideo> GetFormatCodec() const override {
        Pointer<Proc::IFormatCodecVideo> format = Proc::IFormatCodecVideo::Create();
        format->InitByPixelAspect(SIZE.width, SIZE.height, 1, 1);
        return format;
    }

protected:
    Pointer<Proc::IFrameVideo> MakeFrame() const override {
        return Proc::CreateFactoryDataVideoFF()->CreateFrame({1, 1, 1}, Proc::PixFmt::Yuv420p,
                                                             SIZE);
    }

private:
    static constexpr Proc::FrameInfo SIZE{320, 240, 1, 1};
};

class Sound : public Clip<Proc::IStreamAudio, Proc::IFrameAudio> {
public:
    Pointer<Proc::IFormatCodecAudio> GetFormatCodec() const override {
        Pointer<Proc::IFormatCodecAudio> format = Proc::IFormatCodecAudio::Create();
        format->SetSampleInfo(INFO);
        return format;
    }

protected:
    Pointer<Proc::IFrameAudio> MakeFrame() const override {
        return Proc::CreateFactoryDataAudioFF()->CreateFrame(INFO, 1);
    }

private:
    static constexpr Proc::SampleInfo INFO{Proc::SampleFormats::S16, 44100,
                                           Proc::ChannelLayout::Stereo};
};

Pointer<Proc::ICodedStream> Encode(const std::string& codecId) {
    const Pointer<Proc::ICodecFactory> factory = CoreManager::Instance().GetCodecFactory();
    const auto preset = [&](const char* key) {
        return Tarnex::Conf::CreateDataHelper(key, codecId)->GetPresetProperty();
    };
    if (Proc::IsVideoCodec(codecId)) {
        return factory->CreateVideoEncoder(new Pictures(), preset(IPreset::KEY_FILTER_VIDEO_CODEC),
                                           ImplNames::FFMPEG, {});
    }
    return factory->CreateAudioEncoder(new Sound(), preset(IPreset::KEY_FILTER_AUDIO_CODEC),
                                       ImplNames::FFMPEG, {});
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "Usage: MakeSample FILE CODEC_ID\n");
        return 1;
    }
    try {
        CoreManager& core = CoreManager::Instance();
        core.Initialize({}, {}, nullptr, nullptr, true);
        core.WaitUntilInitialized();
        const Pointer<Proc::ICodedStream> stream = Encode(argv[2]);
        if (!stream) {
            throw Tarnex::Exception(std::string("Nobody encodes ") + argv[2]);
        }
        Proc::MuxerFactoryImpl::WriteFile(std::string(argv[1]), stream);
        core.Uninitialize();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "MakeSample: %s\n", failure.what());
        return 1;
    }
    return 0;
}
