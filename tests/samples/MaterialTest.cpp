// Reads the samples with libav alone, without our own code.
#include <gtest/gtest.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <set>

#include "modules/libav/Handles.h"

extern "C" {
#include <libavcodec/bsf.h>
#include <libavutil/adler32.h>
#include <libavutil/imgutils.h>
}

namespace Tarnex::Tests {
namespace {

using Libav::Handle;
using Libav::Own;

/// The contents of a sample.
struct Material {
    int profile = 0;
    std::int64_t bitRate = 0;
    int framesOfB = 0;
    std::set<std::uint32_t> contents;  ///< a checksum of each different frame
    std::string trace;                 ///< the elements of the headers with their values
};

std::string* traced = nullptr;

void Trace(void*, int, const char* format, va_list arguments) {
    std::array<char, 256> line{};
    std::vsnprintf(line.data(), line.size(), format, arguments);
    *traced += line.data();
}

std::string TraceHeaders(const AVCodecParameters& parameters) {
    std::string trace;
    AVBSFContext* filter = nullptr;
    if (av_bsf_alloc(av_bsf_get_by_name("trace_headers"), &filter) < 0) {
        return trace;
    }
    avcodec_parameters_copy(filter->par_in, &parameters);
    traced = &trace;
    av_log_set_callback(Trace);
    av_bsf_init(filter);
    av_log_set_callback(av_log_default_callback);
    av_bsf_free(&filter);
    return trace;
}

/// Of the first plane, without the padding between its rows.
std::uint32_t Checksum(const AVFrame& frame) {
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const int rows = std::max(frame.height, 1);
    const int bytes =
        frame.height > 0
            ? av_image_get_linesize(format, frame.width, 0)
            : frame.nb_samples * av_get_bytes_per_sample(static_cast<AVSampleFormat>(frame.format));
    std::uint32_t sum = 1;
    for (int row = 0; row < rows; ++row) {
        sum = av_adler32_update(sum, frame.data[0] + std::ptrdiff_t{row} * frame.linesize[0],
                                static_cast<std::size_t>(bytes));
    }
    return sum;
}

void Receive(AVCodecContext& decoder, Material& material) {
    const Handle<AVFrame> frame = Own(av_frame_alloc());
    while (avcodec_receive_frame(&decoder, frame.get()) == 0) {
        material.framesOfB += frame->pict_type == AV_PICTURE_TYPE_B ? 1 : 0;
        material.contents.insert(Checksum(*frame));
    }
}

Material Inspect(const std::filesystem::path& sample) {
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, sample.c_str(), nullptr, nullptr) < 0) {
        return {};
    }
    const Handle<AVFormatContext> file(opened);
    avformat_find_stream_info(opened, nullptr);
    const AVCodecParameters& parameters = *opened->streams[0]->codecpar;
    Material material;
    material.profile = parameters.profile;
    material.bitRate = parameters.bit_rate;
    material.trace = TraceHeaders(parameters);
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    const Handle<AVCodecContext> decoder = Own(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), &parameters);
    avcodec_open2(decoder.get(), codec, nullptr);
    const Handle<AVPacket> packet = Own(av_packet_alloc());
    while (av_read_frame(opened, packet.get()) == 0) {
        avcodec_send_packet(decoder.get(), packet.get());
        av_packet_unref(packet.get());
        Receive(*decoder, material);
    }
    avcodec_send_packet(decoder.get(), nullptr);
    Receive(*decoder, material);
    return material;
}

/// The trace has a line for each field: its name, blanks, its bits, "=", its value.
bool IsOn(const std::string& trace, const std::string& field) {
    for (auto at = trace.find(field); at != trace.npos; at = trace.find(field, at + 1)) {
        const auto bits = trace.find_first_not_of(' ', at + field.size());
        if (bits != trace.npos && bits > at + field.size() &&
            trace.substr(bits).starts_with("1 = 1")) {
            return true;
        }
    }
    return false;
}

TEST(Material, IsLikeRealFiles) {
    const struct {
        const char* name;
        int profile;
        int framesOfB;
        std::vector<std::string> tools;
    } rows[] = {
        {"CODEC_ID_AAC.m4a", FF_PROFILE_AAC_LOW, 0, {}},
        {"CODEC_ID_H264.mp4",
         FF_PROFILE_H264_HIGH,
         2,
         {"entropy_coding_mode_flag", "transform_8x8_mode_flag"}},
        {"CODEC_ID_H265.mp4", FF_PROFILE_HEVC_MAIN, 2, {}},
        {"CODEC_ID_MPEG1VIDEO.mpg", FF_PROFILE_UNKNOWN, 2, {}},
        {"CODEC_ID_MPEG2VIDEO.ts", FF_PROFILE_MPEG2_MAIN, 2, {}},
        {"CODEC_ID_MPEG4.avi", FF_PROFILE_MPEG4_ADVANCED_SIMPLE, 2, {}},
    };
    for (const auto& row : rows) {
        const Material material = Inspect(std::filesystem::path(SAMPLES) / row.name);
        EXPECT_EQ(material.profile, row.profile) << row.name;
        EXPECT_GE(material.framesOfB, row.framesOfB) << row.name;
        for (const std::string& tool : row.tools) {
            EXPECT_TRUE(IsOn(material.trace, tool)) << tool;
        }
    }
    const std::int64_t rate = Inspect(std::filesystem::path(SAMPLES) / "CODEC_ID_AAC.m4a").bitRate;
    EXPECT_TRUE(rate > 100000 && rate < 140000) << rate;
}

TEST(Material, MovesAndIsSmall) {
    std::uintmax_t size = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLES)) {
        size += entry.file_size();
        EXPECT_GE(Inspect(entry.path()).contents.size(), 4U) << entry.path();
    }
    EXPECT_LT(size, 2000000U);
}

}  // namespace
}  // namespace Tarnex::Tests
