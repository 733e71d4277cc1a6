#include "modules/libav/Conversion.h"

#include <string>

#include "core/support/Exception.h"

namespace Tarnex::Libav {
namespace {

using Proc::Pointer;

void ReleaseFrame(void* frame, std::uint8_t*) {
    intrusive_ptr_release(static_cast<Proc::IFrameVideo*>(frame));
}

/// Creates a read-only libav buffer that shares the plane and keeps the frame alive.
AVBufferRef* Share(const Proc::Plane& plane, const Pointer<Proc::IFrameVideo>& frame) {
    const auto size =
        static_cast<std::size_t>(plane.stride) * static_cast<std::size_t>(plane.height);
    AVBufferRef* buffer =
        av_buffer_create(plane.data, size, ReleaseFrame, frame.get(), AV_BUFFER_FLAG_READONLY);
    if (buffer == nullptr) {
        throw std::bad_alloc();
    }
    intrusive_ptr_add_ref(frame.get());
    return buffer;
}

/// Adds a palette of greys. libswscale can't write palettes, so the indices are the luma values.
void AddPalette(AVFrame& picture) {
    picture.buf[1] = av_buffer_alloc(AVPALETTE_SIZE);
    if (picture.buf[1] == nullptr) {
        throw std::bad_alloc();
    }
    picture.data[1] = picture.buf[1]->data;
    auto* colours = reinterpret_cast<std::uint32_t*>(picture.data[1]);
    for (std::uint32_t grey = 0; grey < AVPALETTE_COUNT; ++grey) {
        colours[grey] = 0xFF000000U | grey * 0x010101U;
    }
    picture.format = AV_PIX_FMT_PAL8;
}

}  // namespace

AVPixelFormat ToAvFormat(Proc::PixFmt format) {
    switch (format) {
        case Proc::PixFmt::Nv12:
            return AV_PIX_FMT_NV12;
        case Proc::PixFmt::Yuv420p:
            return AV_PIX_FMT_YUV420P;
    }
    throw Exception("Unknown pixel format " + std::to_string(static_cast<int>(format)));
}

Handle<AVFrame> ToAvFrame(const Pointer<Proc::IFrameVideo>& frame) {
    Handle<AVFrame> picture = Own(av_frame_alloc());
    const Proc::FrameInfo info = frame->GetFrameInfo();
    picture->format = ToAvFormat(frame->GetPixelFormat());
    picture->width = info.width;
    picture->height = info.height;
    picture->pts = frame->GetFrameTime();
    const std::vector<Proc::Plane>& planes = frame->GetPlanes();
    if (static_cast<int>(planes.size()) !=
        av_pix_fmt_count_planes(static_cast<AVPixelFormat>(picture->format))) {
        throw Exception("Can't read a video frame with " + std::to_string(planes.size()) +
                        " planes");
    }
    for (std::size_t i = 0; i < planes.size(); ++i) {
        picture->data[i] = planes[i].data;
        picture->linesize[i] = planes[i].stride;
        picture->buf[i] = Share(planes[i], frame);
    }
    return picture;
}

Handle<AVFrame> ToAvFrame(const Proc::IFrameAudio& frame) {
    Handle<AVFrame> sound = Own(av_frame_alloc());
    const Proc::SampleInfo info = frame.GetSampleInfo();
    sound->format = AV_SAMPLE_FMT_S16;
    sound->sample_rate = info.rate;
    sound->nb_samples = static_cast<int>(frame.GetSampleCount());
    sound->pts = frame.GetFrameTime();
    av_channel_layout_default(&sound->ch_layout, static_cast<int>(info.layout));
    sound->data[0] = frame.GetSamples();
    sound->linesize[0] = sound->nb_samples * sound->ch_layout.nb_channels * 2;
    return sound;
}

Handle<AVFrame> PictureConverter::Convert(Handle<AVFrame> picture, const PictureForm& form) {
    const auto format = static_cast<AVPixelFormat>(picture->format);
    if (format == form.format && picture->width == form.width && picture->height == form.height) {
        return picture;
    }
    const bool hasPalette = form.format == AV_PIX_FMT_PAL8;
    const AVPixelFormat written = hasPalette ? AV_PIX_FMT_GRAY8 : form.format;
    scaler.reset(sws_getCachedContext(scaler.release(), picture->width, picture->height, format,
                                      form.width, form.height, written, SWS_FAST_BILINEAR, nullptr,
                                      nullptr, nullptr));
    if (!scaler) {
        log.Fail(std::string("can't convert pixel format ") + av_get_pix_fmt_name(format) + " to " +
                 av_get_pix_fmt_name(form.format));
    }
    Handle<AVFrame> converted = Own(av_frame_alloc());
    converted->pts = picture->pts;
    log.Check(sws_scale_frame(scaler.get(), converted.get(), picture.get()),
              "converting a picture");
    if (hasPalette) {
        AddPalette(*converted);
    }
    return converted;
}

Handle<AVFrame> SoundConverter::Convert(const AVFrame& sound, AVSampleFormat format, int rate,
                                        const AVChannelLayout& layout) {
    if (!resampler) {
        resampler = Own(swr_alloc());
    }
    Handle<AVFrame> converted = Own(av_frame_alloc());
    converted->format = format;
    converted->sample_rate = rate;
    converted->pts = sound.pts;
    log.Check(av_channel_layout_copy(&converted->ch_layout, &layout), "copying a channel layout");
    int result = swr_convert_frame(resampler.get(), converted.get(), &sound);
    if (result == AVERROR_INPUT_CHANGED) {
        swr_close(resampler.get());
        result = swr_convert_frame(resampler.get(), converted.get(), &sound);
    }
    log.Check(result, "converting sound");
    return converted;
}

}  // namespace Tarnex::Libav
