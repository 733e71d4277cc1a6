#include "bench/BareEncoding.h"

#include <stdexcept>

#include "core/media/CodecFactory.h"
#include "core/media/Frames.h"
#include "modules/libav/CodecTable.h"
#include "modules/libav/EncoderTraits.h"
#include "modules/libav/Parameters.h"
#include "streams/FakeStreamAudio.h"
#include "streams/FakeStreamVideo.h"
#include "streams/TestColorSpace.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace Tarnex::Bench {
namespace {

using Libav::EncoderTraits;
using Libav::Handle;
using Libav::Own;

constexpr int SAMPLE_RATE = 44100;

/// Creates a new picture for each codec, as the program's synthetic stream does.
Handle<AVFrame> MakePicture(const std::string& codecId) {
    const Proc::Pointer<Core::Utils::FakeStreamVideo> stream(
        new Core::Utils::FakeStreamVideo(Proc::ImplNames::FFMPEG, codecId));
    const auto frame = stream->GetNextFrame();
    Handle<AVFrame> picture = Own(av_frame_alloc());
    picture->format = AV_PIX_FMT_YUV420P;
    picture->width = frame->GetFrameInfo().width;
    picture->height = frame->GetFrameInfo().height;
    av_frame_get_buffer(picture.get(), 0);
    for (int i = 0; i < 3; ++i) {
        const Proc::Plane& plane = frame->GetPlanes()[static_cast<std::size_t>(i)];
        av_image_copy_plane(picture->data[i], picture->linesize[i], plane.data, plane.stride,
                            i == 0 ? picture->width : picture->width / 2, plane.height);
    }
    return picture;
}

Handle<AVFrame> Convert(Handle<AVFrame> picture, const AVCodecContext& coder) {
    if (picture->format == coder.pix_fmt && picture->width == coder.width) {
        return picture;
    }
    const bool hasPalette = coder.pix_fmt == AV_PIX_FMT_PAL8;
    const Handle<SwsContext> scaler =
        Own(sws_getContext(picture->width, picture->height, AV_PIX_FMT_YUV420P, coder.width,
                           coder.height, hasPalette ? AV_PIX_FMT_GRAY8 : coder.pix_fmt,
                           SWS_FAST_BILINEAR, nullptr, nullptr, nullptr));
    Handle<AVFrame> converted = Own(av_frame_alloc());
    sws_scale_frame(scaler.get(), converted.get(), picture.get());
    if (hasPalette) {
        converted->format = AV_PIX_FMT_PAL8;
        converted->buf[1] = av_buffer_allocz(AVPALETTE_SIZE);
        converted->data[1] = converted->buf[1]->data;
    }
    return converted;
}

void ConfigurePicture(AVCodecContext& coder, const EncoderTraits& traits, const AVFrame& picture) {
    coder.width = traits.width == 0 ? picture.width : traits.width;
    coder.height = traits.height == 0 ? picture.height : traits.height;
    coder.time_base = {1, 25};
    coder.framerate = {25, 1};
    coder.pix_fmt = traits.pixelFormat;
    if (coder.pix_fmt == AV_PIX_FMT_NONE) {
        coder.pix_fmt = coder.codec->pix_fmts == nullptr
                            ? AV_PIX_FMT_YUV420P
                            : avcodec_find_best_pix_fmt_of_list(coder.codec->pix_fmts,
                                                                AV_PIX_FMT_YUV420P, 0, nullptr);
    }
    Libav::SetColors(coder, Core::Utils::TEST_COLOR_SPACE);
}

void ConfigureSound(AVCodecContext& coder, const EncoderTraits& traits) {
    const AVCodec& codec = *coder.codec;
    coder.sample_fmt = codec.sample_fmts == nullptr ? AV_SAMPLE_FMT_S16 : codec.sample_fmts[0];
    coder.sample_rate = traits.sampleRate == 0 ? SAMPLE_RATE : traits.sampleRate;
    if (codec.supported_samplerates != nullptr && traits.sampleRate == 0) {
        coder.sample_rate = codec.supported_samplerates[0];
    }
    av_channel_layout_default(&coder.ch_layout, traits.channels == 0 ? 2 : traits.channels);
    if (codec.ch_layouts != nullptr && traits.channels == 0) {
        av_channel_layout_copy(&coder.ch_layout, codec.ch_layouts);
    }
    coder.time_base = {1, coder.sample_rate};
}

/// One frame of the synthetic sound, cut to the coder's frame size or filled up with silence.
Handle<AVFrame> MakeSound(const AVCodecContext& coder) {
    const auto source =
        Proc::Pointer<Core::Utils::FakeStreamAudio>(new Core::Utils::FakeStreamAudio())
            ->GetNextFrame();
    Handle<AVFrame> sound = Own(av_frame_alloc());
    sound->format = coder.sample_fmt;
    sound->sample_rate = coder.sample_rate;
    sound->nb_samples = coder.frame_size == 0 ? 1024 : coder.frame_size;
    av_channel_layout_copy(&sound->ch_layout, &coder.ch_layout);
    av_frame_get_buffer(sound.get(), 0);
    av_samples_set_silence(sound->extended_data, 0, sound->nb_samples, sound->ch_layout.nb_channels,
                           coder.sample_fmt);
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    SwrContext* resampler = nullptr;
    swr_alloc_set_opts2(&resampler, &sound->ch_layout, coder.sample_fmt, coder.sample_rate, &stereo,
                        AV_SAMPLE_FMT_S16, SAMPLE_RATE, 0, nullptr);
    swr_init(resampler);
    const std::uint8_t* samples = source->GetSamples();
    swr_convert(resampler, sound->extended_data, sound->nb_samples, &samples,
                static_cast<int>(source->GetSampleCount()));
    swr_free(&resampler);
    return sound;
}

bool ReceivePacket(AVCodecContext& coder, Handle<AVFrame> frame) {
    const Handle<AVPacket> packet = Own(av_packet_alloc());
    constexpr int MAX_FRAMES = 16;
    for (int i = 0; i < MAX_FRAMES; ++i) {
        const bool isDrained = frame == nullptr;
        if (avcodec_send_frame(&coder, frame.get()) < 0) {
            return false;
        }
        if (avcodec_receive_packet(&coder, packet.get()) == 0) {
            return true;
        }
        if (isDrained) {
            return false;
        }
        // Sound consists of several frames, and some coders need a few of them.
        if (coder.codec_type == AVMEDIA_TYPE_VIDEO || i == MAX_FRAMES - 2) {
            frame.reset();
        } else {
            frame->pts += frame->nb_samples;
        }
    }
    return false;
}

}  // namespace

std::string NameOfEncoder(const std::string& codecId) {
    return avcodec_find_encoder(Libav::FromCodecId(codecId))->name;
}

void EncodeBare(const std::string& codecId) {
    const AVCodec* codec = avcodec_find_encoder(Libav::FromCodecId(codecId));
    const EncoderTraits& traits = Libav::GetTraits(*codec);
    const Handle<AVCodecContext> coder = Own(avcodec_alloc_context3(codec));
    coder->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    coder->thread_count = 1;
    Handle<AVFrame> frame;
    if (codec->type == AVMEDIA_TYPE_VIDEO) {
        frame = MakePicture(codecId);
        ConfigurePicture(*coder, traits, *frame);
    } else {
        ConfigureSound(*coder, traits);
    }
    AVDictionary* options = nullptr;
    av_dict_parse_string(&options, traits.options, "=", " ", 0);
    av_dict_parse_string(&options, traits.fastest, "=", " ", 0);
    const int result = avcodec_open2(coder.get(), codec, &options);
    av_dict_free(&options);
    if (result >= 0) {
        frame = codec->type == AVMEDIA_TYPE_VIDEO ? Convert(std::move(frame), *coder)
                                                  : MakeSound(*coder);
        frame->pts = 0;
    }
    if (result < 0 || !ReceivePacket(*coder, std::move(frame))) {
        throw std::runtime_error("libavcodec alone returned no packet for " + codecId);
    }
}

}  // namespace Tarnex::Bench
