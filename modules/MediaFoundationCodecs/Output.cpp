#include "modules/MediaFoundationCodecs/Output.h"

#include <gst/audio/audio.h>
#include <gst/video/video.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/media/FrameTiming.h"
#include "core/support/Exception.h"

namespace Tarnex::MediaFoundation {

namespace {

constexpr std::int64_t MILLISECONDS = 1000;

std::int64_t ToStreamTime(GstClockTime time) {
    return GST_CLOCK_TIME_IS_VALID(time) ? static_cast<std::int64_t>(time / GST_MSECOND) : 0;
}

/// A sample's start time. Some encoders shift their times away from 0; the segment undoes that.
std::int64_t TimeOf(GstSample* sample) {
    const GstClockTime time = GST_BUFFER_PTS(gst_sample_get_buffer(sample));
    return ToStreamTime(
        gst_segment_to_stream_time(gst_sample_get_segment(sample), GST_FORMAT_TIME, time));
}

/// Computes the duration if the decoder doesn't set it.
GstClockTime DurationOf(const GstBuffer* buffer, const GstVideoInfo& info) {
    if (GST_BUFFER_DURATION_IS_VALID(buffer) || info.fps_n <= 0) {
        return GST_BUFFER_DURATION(buffer);
    }
    return gst_util_uint64_scale_int(GST_SECOND, info.fps_d, info.fps_n);
}

/// Maps a sample's memory for reading.
class Mapping {
public:
    explicit Mapping(GstOwner<GstSample> newSample) : sample(std::move(newSample)) {
        if (gst_buffer_map(gst_sample_get_buffer(sample.get()), &map, GST_MAP_READ) == FALSE) {
            throw Exception("The media framework's buffer can't be read");
        }
    }
    ~Mapping() { gst_buffer_unmap(gst_sample_get_buffer(sample.get()), &map); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    GstSample* Sample() const { return sample.get(); }
    std::uint8_t* Data() const { return map.data; }
    std::size_t Size() const { return map.size; }

private:
    GstOwner<GstSample> sample;
    GstMapInfo map{};
};

class Packet : public Proc::RefCounted<Proc::IPacket> {
public:
    explicit Packet(GstOwner<GstSample> sample) : mapping(std::move(sample)) {}

    const std::uint8_t* GetData() const override { return mapping.Data(); }
    std::size_t GetSize() const override { return mapping.Size(); }
    std::int64_t GetTime() const override { return TimeOf(mapping.Sample()); }
    bool IsKey() const override {
        return !GST_BUFFER_FLAG_IS_SET(gst_sample_get_buffer(mapping.Sample()),
                                       GST_BUFFER_FLAG_DELTA_UNIT);
    }

private:
    Mapping mapping;
};

class VideoFrame : public Proc::FrameTiming<Proc::IFrameVideo> {
public:
    explicit VideoFrame(GstOwner<GstSample> newSample) : sample(std::move(newSample)) {
        GstVideoInfo info;
        GstBuffer* buffer = gst_sample_get_buffer(sample.get());
        if (gst_video_info_from_caps(&info, gst_sample_get_caps(sample.get())) == FALSE ||
            gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ) == FALSE) {
            throw Exception("The media framework's picture can't be read");
        }
        SetFrameTime(TimeOf(sample.get()));
        SetFrameLength(ToStreamTime(DurationOf(buffer, info)));
        for (guint i = 0; i < GST_VIDEO_FRAME_N_PLANES(&frame); ++i) {
            planes.push_back({static_cast<std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, i)),
                              GST_VIDEO_FRAME_PLANE_STRIDE(&frame, i),
                              GST_VIDEO_FRAME_COMP_HEIGHT(&frame, i)});
        }
    }
    ~VideoFrame() override { gst_video_frame_unmap(&frame); }

    Proc::PixFmt GetPixelFormat() const override {
        return GST_VIDEO_FRAME_FORMAT(&frame) == GST_VIDEO_FORMAT_NV12 ? Proc::PixFmt::Nv12
                                                                       : Proc::PixFmt::Yuv420p;
    }
    Proc::FrameInfo GetFrameInfo() const override {
        return {.width = frame.info.width,
                .height = frame.info.height,
                .aspectX = frame.info.par_n,
                .aspectY = frame.info.par_d};
    }
    Proc::ColorSpace GetColorSpace() const override {
        const GstVideoColorimetry& color = frame.info.colorimetry;
        return {.primaries = gst_video_color_primaries_to_iso(color.primaries),
                .transfer = gst_video_transfer_function_to_iso(color.transfer),
                .matrix = gst_video_color_matrix_to_iso(color.matrix)};
    }
    const std::vector<Proc::Plane>& GetPlanes() const override { return planes; }

private:
    GstOwner<GstSample> sample;
    GstVideoFrame frame{};
    std::vector<Proc::Plane> planes;
};

class AudioFrame : public Proc::FrameTiming<Proc::IFrameAudio> {
public:
    explicit AudioFrame(GstOwner<GstSample> sample) : mapping(std::move(sample)) {
        GstAudioInfo info;
        if (gst_audio_info_from_caps(&info, gst_sample_get_caps(mapping.Sample())) == FALSE) {
            throw Exception("The media framework's sound can't be read");
        }
        sampleInfo.Init(Proc::SampleFormats::S16, info.rate,
                        static_cast<Proc::ChannelLayout>(info.channels));
        count = mapping.Size() / static_cast<std::size_t>(info.bpf);
        SetFrameTime(TimeOf(mapping.Sample()));
        SetFrameLength(static_cast<std::int64_t>(count) * MILLISECONDS / info.rate);
    }

    Proc::SampleInfo GetSampleInfo() const override { return sampleInfo; }
    std::size_t GetSampleCount() const override { return count; }
    std::uint8_t* GetSamples() const override { return mapping.Data(); }

private:
    Mapping mapping;
    Proc::SampleInfo sampleInfo;
    std::size_t count = 0;
};

}  // namespace

Proc::Pointer<Proc::IPacket> PacketOf(GstOwner<GstSample> sample) {
    return new Packet(std::move(sample));
}

Proc::Pointer<Proc::IFrameVideo> VideoFrameOf(GstOwner<GstSample> sample) {
    return new VideoFrame(std::move(sample));
}

Proc::Pointer<Proc::IFrameAudio> AudioFrameOf(GstOwner<GstSample> sample) {
    return new AudioFrame(std::move(sample));
}

}  // namespace Tarnex::MediaFoundation
