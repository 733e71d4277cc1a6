#include "modules/MediaFoundationCodecs/Decoder.h"

#include <optional>
#include <string>
#include <utility>

#include "core/support/Exception.h"
#include "modules/MediaFoundationCodecs/Input.h"
#include "modules/MediaFoundationCodecs/Output.h"
#include "modules/MediaFoundationCodecs/Pipeline.h"
#include "modules/MediaFoundationCodecs/StreamHeaders.h"
#include "modules/common/CoderStream.h"

namespace Tarnex::MediaFoundation {

namespace {

constexpr char DECODE[] = "decodebin force-sw-decoders=true ! ";
constexpr char TO_PICTURES[] = "videoconvert ! video/x-raw,format={I420,NV12}";
constexpr char TO_SOUND[] =
    "audioconvert ! audio/x-raw,format=S16LE,layout=interleaved,channels=[1,2]";

/// Feeds a coded stream into a decoding pipeline. Creates a new pipeline after each seek.
class Feed {
public:
    Feed(const Codec& codec, Proc::Pointer<Proc::ICodedStream> input, std::string convert,
         bool isSingleThreaded)
        : codec(codec),
          input(std::move(input)),
          elements(DECODE + std::move(convert)),
          isSingleThreaded(isSingleThreaded) {}

    GstOwner<GstSample> Next() {
        if (!pipeline) {
            pipeline.emplace(std::string("The decoder of ") + codec.id, elements, isSingleThreaded);
            isStarted = false;
        }
        return pipeline->Next([this] { return PushPacket(); });
    }
    void Restart() { pipeline.reset(); }

private:
    bool PushPacket() {
        const Proc::Pointer<Proc::IData> data = input->ReadNext();
        if (!data) {
            PushTail();
            return false;
        }
        const auto* const packet = dynamic_cast<const Proc::IPacket*>(data.get());
        if (packet == nullptr) {
            throw Exception(std::string("The decoder of ") + codec.id +
                            " was given something other than a packet");
        }
        if (!isStarted) {
            PushStart();
        }
        pipeline->Push(BufferOf(*packet));
        return true;
    }

    // Waits for the first packet, because an encoder knows its extradata only then.
    void PushStart() {
        const StreamStart start = StartOf(codec, *input->GetCodecFormat());
        pipeline->SetInputCaps(start.caps.get());
        for (const Bytes& header : start.headers) {
            pipeline->Push(BufferOf(header));
        }
        isStarted = true;
    }

    void PushTail() {
        if (isStarted && !codec.tail.empty()) {
            pipeline->Push(BufferOf(Bytes(codec.tail.begin(), codec.tail.end())));
        }
    }

    const Codec& codec;
    Proc::Pointer<Proc::ICodedStream> input;
    std::string elements;
    bool isSingleThreaded;
    bool isStarted = false;
    std::optional<Pipeline> pipeline;
};

bool IsUsable(const Proc::IFormatCodecVideo& coded) {
    return coded.GetFrameInfo().width > 0 && coded.GetFrameInfo().height > 0;
}

bool IsUsable(const Proc::IFormatCodecAudio& coded) {
    return coded.GetSampleInfo().rate > 0 && static_cast<int>(coded.GetSampleInfo().layout) > 0;
}

template <class Format>
Proc::Pointer<Format> FormatOf(const Codec& codec, const Proc::ICodedStream& input) {
    auto format = boost::dynamic_pointer_cast<Format>(input.GetCodecFormat());
    if (!format || !IsUsable(*format)) {
        throw Exception(std::string("The decoder of ") + codec.id + " was given a stream " +
                        (format ? "without size, rate or channels" : "of another media kind"));
    }
    return format;
}

Proc::Pointer<Proc::IFormatCodecVideo> PictureFormatOf(const Proc::IFormatCodecVideo& coded) {
    auto format = Proc::IFormatCodecVideo::Create();
    const Proc::FrameInfo info = coded.GetFrameInfo();
    const Proc::FrameRate rate = coded.GetFrameRate();
    format->InitByPixelAspect(info.width, info.height, info.aspectX, info.aspectY);
    format->SetFrameRate(rate.numerator, rate.denominator);
    format->SetColorSpace(coded.GetColorSpace());
    format->SetPixelFormat(Proc::PixFmt::Yuv420p);
    return format;
}

Proc::Pointer<Proc::IFormatCodecAudio> SoundFormatOf(const Proc::IFormatCodecAudio& coded) {
    auto format = Proc::IFormatCodecAudio::Create();
    format->SetSampleInfo(coded.GetSampleInfo());
    return format;
}

class VideoDecoder : public Modules::DecoderStream<Proc::IStreamVideo, Proc::IFrameVideo> {
public:
    VideoDecoder(const Codec& codec, const Proc::Pointer<Proc::ICodedStream>& input,
                 bool isSingleThreaded)
        : DecoderStream(input, "MediaFoundationVideoDecoder"),
          format(PictureFormatOf(*FormatOf<Proc::IFormatCodecVideo>(codec, *input))),
          feed(codec, input, TO_PICTURES, isSingleThreaded) {}

    Proc::Pointer<Proc::IFormatCodecVideo> GetFormatCodec() const override { return format; }

protected:
    Proc::Pointer<Proc::IData> MakeNext() override {
        GstOwner<GstSample> sample = feed.Next();
        return sample ? VideoFrameOf(std::move(sample)) : nullptr;
    }
    void Restart() override { feed.Restart(); }

private:
    Proc::Pointer<Proc::IFormatCodecVideo> format;
    Feed feed;
};

class AudioDecoder : public Modules::DecoderStream<Proc::IStreamAudio, Proc::IFrameAudio> {
public:
    AudioDecoder(const Codec& codec, const Proc::Pointer<Proc::ICodedStream>& input,
                 bool isSingleThreaded)
        : DecoderStream(input, "MediaFoundationAudioDecoder"),
          format(SoundFormatOf(*FormatOf<Proc::IFormatCodecAudio>(codec, *input))),
          feed(codec, input, TO_SOUND, isSingleThreaded) {}

    Proc::Pointer<Proc::IFormatCodecAudio> GetFormatCodec() const override { return format; }

protected:
    Proc::Pointer<Proc::IData> MakeNext() override {
        GstOwner<GstSample> sample = feed.Next();
        return sample ? AudioFrameOf(std::move(sample)) : nullptr;
    }
    void Restart() override { feed.Restart(); }

private:
    Proc::Pointer<Proc::IFormatCodecAudio> format;
    Feed feed;
};

}  // namespace

Proc::Pointer<Proc::IStreamVideo> NewVideoDecoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::ICodedStream>& input,
                                                  bool isSingleThreaded) {
    return new VideoDecoder(codec, input, isSingleThreaded);
}

Proc::Pointer<Proc::IStreamAudio> NewAudioDecoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::ICodedStream>& input,
                                                  bool isSingleThreaded) {
    return new AudioDecoder(codec, input, isSingleThreaded);
}

}  // namespace Tarnex::MediaFoundation
