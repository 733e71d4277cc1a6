#include "modules/libav/Decoder.h"

#include <algorithm>

#include "core/media/FrameTiming.h"
#include "modules/common/CoderStream.h"
#include "modules/libav/Conversion.h"
#include "modules/libav/FrameDecoder.h"
#include "modules/libav/Parameters.h"

namespace Tarnex::Libav {
namespace {

using Proc::Pointer;

/// The core's view of a frame that libav owns.
template <class Interface>
class DecodedFrame : public Proc::FrameTiming<Interface> {
public:
    DecodedFrame(Handle<AVFrame> decoded, std::int64_t length)
        : Proc::FrameTiming<Interface>(length), frame(std::move(decoded)) {
        this->SetFrameTime(frame->pts);
    }

protected:
    Handle<AVFrame> frame;
};

Proc::PixFmt ToPixFmt(int format) {
    return format == AV_PIX_FMT_NV12 ? Proc::PixFmt::Nv12 : Proc::PixFmt::Yuv420p;
}

class DecodedPicture : public DecodedFrame<Proc::IFrameVideo> {
public:
    DecodedPicture(Handle<AVFrame> decoded, std::int64_t length)
        : DecodedFrame(std::move(decoded), length) {
        const int chromaHeight = (frame->height + 1) / 2;
        planes.push_back({frame->data[0], frame->linesize[0], frame->height});
        planes.push_back({frame->data[1], frame->linesize[1], chromaHeight});
        if (frame->format == AV_PIX_FMT_YUV420P) {
            planes.push_back({frame->data[2], frame->linesize[2], chromaHeight});
        }
    }

    Proc::PixFmt GetPixelFormat() const override { return ToPixFmt(frame->format); }
    Proc::FrameInfo GetFrameInfo() const override {
        return {frame->width, frame->height, std::max(frame->sample_aspect_ratio.num, 1),
                std::max(frame->sample_aspect_ratio.den, 1)};
    }
    Proc::ColorSpace GetColorSpace() const override {
        return ToColorSpace(frame->color_primaries, frame->color_trc, frame->colorspace);
    }
    const std::vector<Proc::Plane>& GetPlanes() const override { return planes; }

private:
    std::vector<Proc::Plane> planes;
};

Proc::SampleInfo MakeSampleInfo(int rate, int channels) {
    Proc::SampleInfo info;
    info.Init(Proc::SampleFormats::S16, rate,
              channels == 1 ? Proc::ChannelLayout::Mono : Proc::ChannelLayout::Stereo);
    return info;
}

class DecodedSound : public DecodedFrame<Proc::IFrameAudio> {
public:
    explicit DecodedSound(Handle<AVFrame> decoded) : DecodedFrame(std::move(decoded), 0) {
        SetFrameLength(av_rescale(frame->nb_samples, MILLISECONDS.den, frame->sample_rate));
    }

    Proc::SampleInfo GetSampleInfo() const override {
        return MakeSampleInfo(frame->sample_rate, frame->ch_layout.nb_channels);
    }
    std::size_t GetSampleCount() const override {
        return static_cast<std::size_t>(frame->nb_samples);
    }
    std::uint8_t* GetSamples() const override { return frame->data[0]; }
};

std::int64_t DurationOf(const AVFrame& frame) {
#if LIBAVUTIL_VERSION_INT < AV_VERSION_INT(57, 30, 100)
    return frame.pkt_duration;
#else
    return frame.duration;
#endif
}

/// How long a picture lasts, in milliseconds. 0 if neither the packet nor the stream says it.
std::int64_t LengthOf(const AVFrame& frame, const AVCodecContext& coder) {
    const std::int64_t duration = DurationOf(frame);
    if (duration > 0) {
        return av_rescale_q(duration, coder.pkt_timebase, MILLISECONDS);
    }
    const AVRational rate = coder.framerate;
    return rate.num > 0 && rate.den > 0 ? av_rescale_q(1, av_inv_q(rate), MILLISECONDS) : 0;
}

class VideoDecoder : public Modules::DecoderStream<Proc::IStreamVideo, Proc::IFrameVideo> {
public:
    VideoDecoder(const AVCodec& codec, const Pointer<Proc::ICodedStream>& input,
                 bool isSingleThreaded)
        : DecoderStream(input, codec.name),
          decoder(codec, input, isSingleThreaded),
          converter(decoder.GetLog()) {}

    Pointer<Proc::IFormatCodecVideo> GetFormatCodec() const override {
        const AVCodecContext& coder = decoder.GetContext();
        Pointer<Proc::IFormatCodecVideo> format = Proc::IFormatCodecVideo::Create();
        format->InitByPixelAspect(coder.width, coder.height,
                                  std::max(coder.sample_aspect_ratio.num, 1),
                                  std::max(coder.sample_aspect_ratio.den, 1));
        format->SetPixelFormat(ToPixFmt(coder.pix_fmt));
        format->SetColorSpace(
            ToColorSpace(coder.color_primaries, coder.color_trc, coder.colorspace));
        if (coder.framerate.num > 0 && coder.framerate.den > 0) {
            format->SetFrameRate(coder.framerate.num, coder.framerate.den);
        }
        return format;
    }

protected:
    Pointer<Proc::IData> MakeNext() override {
        Handle<AVFrame> frame = decoder.Next();
        if (!frame) {
            return {};
        }
        const std::int64_t length = LengthOf(*frame, decoder.GetContext());
        const PictureForm form{ToAvFormat(ToPixFmt(frame->format)), frame->width, frame->height};
        return new DecodedPicture(converter.Convert(std::move(frame), form), length);
    }
    void Restart() override { decoder.Restart(); }

private:
    FrameDecoder decoder;
    PictureConverter converter;
};

class AudioDecoder : public Modules::DecoderStream<Proc::IStreamAudio, Proc::IFrameAudio> {
public:
    AudioDecoder(const AVCodec& codec, const Pointer<Proc::ICodedStream>& input,
                 bool isSingleThreaded)
        : DecoderStream(input, codec.name),
          decoder(codec, input, isSingleThreaded),
          converter(decoder.GetLog()) {}

    Pointer<Proc::IFormatCodecAudio> GetFormatCodec() const override {
        const AVCodecContext& coder = decoder.GetContext();
        Pointer<Proc::IFormatCodecAudio> format = Proc::IFormatCodecAudio::Create();
        format->SetSampleInfo(MakeSampleInfo(coder.sample_rate, coder.ch_layout.nb_channels));
        return format;
    }

protected:
    Pointer<Proc::IData> MakeNext() override {
        const Handle<AVFrame> frame = decoder.Next();
        if (!frame) {
            return {};
        }
        const AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
        const AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
        return new DecodedSound(
            converter.Convert(*frame, AV_SAMPLE_FMT_S16, frame->sample_rate,
                              frame->ch_layout.nb_channels == 1 ? mono : stereo));
    }
    void Restart() override { decoder.Restart(); }

private:
    FrameDecoder decoder;
    SoundConverter converter;
};

}  // namespace

Pointer<Proc::IStreamVideo> MakeVideoDecoder(const AVCodec& codec,
                                             const Pointer<Proc::ICodedStream>& input,
                                             bool isSingleThreaded) {
    return new VideoDecoder(codec, input, isSingleThreaded);
}

Pointer<Proc::IStreamAudio> MakeAudioDecoder(const AVCodec& codec,
                                             const Pointer<Proc::ICodedStream>& input,
                                             bool isSingleThreaded) {
    return new AudioDecoder(codec, input, isSingleThreaded);
}

}  // namespace Tarnex::Libav
