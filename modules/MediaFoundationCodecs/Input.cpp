#include "modules/MediaFoundationCodecs/Input.h"

#include <gst/audio/audio.h>
#include <gst/video/video.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "core/support/Exception.h"
#include "modules/common/CoderLimits.h"

namespace Tarnex::MediaFoundation {

namespace {

GstClockTime ToClockTime(std::int64_t time) {
    return time < 0 ? GST_CLOCK_TIME_NONE : static_cast<GstClockTime>(time) * GST_MSECOND;
}

/// Checks each frame, because frames may differ from their stream's format.
void Require(const std::string& fault) {
    if (!fault.empty()) {
        throw Exception("The media framework " + fault);
    }
}

GstVideoInfo VideoInfoOf(const Proc::IFrameVideo& frame, const Proc::FrameRate& rate) {
    const bool isNv12 = frame.GetPixelFormat() == Proc::PixFmt::Nv12;
    const Proc::FrameInfo size = frame.GetFrameInfo();
    const Proc::ColorSpace color = frame.GetColorSpace();
    Require(Modules::FindFault(size, rate));
    GstVideoInfo info;
    if (gst_video_info_set_format(&info, isNv12 ? GST_VIDEO_FORMAT_NV12 : GST_VIDEO_FORMAT_I420,
                                  static_cast<guint>(size.width),
                                  static_cast<guint>(size.height)) == FALSE) {
        throw Exception("The media framework can't describe such pictures");
    }
    info.fps_n = rate.numerator;
    info.fps_d = rate.denominator;
    info.par_n = size.aspectX;
    info.par_d = size.aspectY;
    info.colorimetry = {GST_VIDEO_COLOR_RANGE_16_235, gst_video_color_matrix_from_iso(color.matrix),
                        gst_video_transfer_function_from_iso(color.transfer),
                        gst_video_color_primaries_from_iso(color.primaries)};
    return info;
}

void CopyPlane(const Proc::Plane& from, GstVideoFrame& to, guint plane) {
    auto* target = static_cast<std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&to, plane));
    const int stride = GST_VIDEO_FRAME_PLANE_STRIDE(&to, plane);
    const int width =
        GST_VIDEO_FRAME_COMP_WIDTH(&to, plane) * GST_VIDEO_FRAME_COMP_PSTRIDE(&to, plane);
    for (int row = 0; row < GST_VIDEO_FRAME_COMP_HEIGHT(&to, plane); ++row) {
        std::copy_n(from.data + std::ptrdiff_t{row} * from.stride, width,
                    target + std::ptrdiff_t{row} * stride);
    }
}

}  // namespace

GstOwner<GstBuffer> BufferOf(std::span<const std::uint8_t> bytes) {
    return GstOwner<GstBuffer>(gst_buffer_new_memdup(bytes.data(), bytes.size()));
}

GstOwner<GstBuffer> BufferOf(const Proc::IPacket& packet) {
    GstOwner<GstBuffer> buffer = BufferOf(std::span(packet.GetData(), packet.GetSize()));
    GST_BUFFER_PTS(buffer.get()) = ToClockTime(packet.GetTime());
    return buffer;
}

Input InputOf(const Proc::IFrameVideo& frame, const Proc::FrameRate& rate) {
    GstVideoInfo info = VideoInfoOf(frame, rate);
    if (frame.GetPlanes().size() < GST_VIDEO_INFO_N_PLANES(&info)) {
        throw Exception("Can't encode a picture with too few planes");
    }
    GstOwner<GstBuffer> buffer(gst_buffer_new_allocate(nullptr, info.size, nullptr));
    GstVideoFrame mapped;
    if (!buffer || gst_video_frame_map(&mapped, &info, buffer.get(), GST_MAP_WRITE) == FALSE) {
        throw Exception("The media framework has no memory for a picture");
    }
    for (guint plane = 0; plane < GST_VIDEO_FRAME_N_PLANES(&mapped); ++plane) {
        CopyPlane(frame.GetPlanes()[plane], mapped, plane);
    }
    gst_video_frame_unmap(&mapped);
    GST_BUFFER_PTS(buffer.get()) = ToClockTime(frame.GetFrameTime());
    return {std::move(buffer), GstOwner<GstCaps>(gst_video_info_to_caps(&info))};
}

Input InputOf(const Proc::IFrameAudio& frame) {
    const Proc::SampleInfo sampleInfo = frame.GetSampleInfo();
    Require(Modules::FindFault(sampleInfo));
    GstAudioInfo info;
    gst_audio_info_init(&info);
    gst_audio_info_set_format(&info, GST_AUDIO_FORMAT_S16, sampleInfo.rate,
                              static_cast<gint>(sampleInfo.layout), nullptr);
    GstOwner<GstBuffer> buffer = BufferOf(
        std::span(frame.GetSamples(), frame.GetSampleCount() * static_cast<std::size_t>(info.bpf)));
    GST_BUFFER_PTS(buffer.get()) = ToClockTime(frame.GetFrameTime());
    return {std::move(buffer), GstOwner<GstCaps>(gst_audio_info_to_caps(&info))};
}

}  // namespace Tarnex::MediaFoundation
