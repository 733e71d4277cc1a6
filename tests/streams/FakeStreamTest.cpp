#include <gtest/gtest.h>

#include <limits>

#include "core/media/CodecFactory.h"
#include "streams/FakeStreamAudio.h"
#include "streams/FakeStreamVideo.h"

namespace Tarnex::Core::Utils {
namespace {

using Proc::ImplNames;
using Proc::Pointer;

TEST(FakeStreamVideo, ShapeFollowsImplementationAndCodec) {
    const struct {
        const char* implementation;
        const char* codecId;
        int width;
        int height;
        Proc::PixFmt pixelFormat;
    } rows[] = {
        {ImplNames::FFMPEG, "CODEC_ID_VP9", 1920, 1080, Proc::PixFmt::Yuv420p},
        {ImplNames::MEDIA_FOUNDATION, "CODEC_ID_DVVIDEO", 720, 576, Proc::PixFmt::Yuv420p},
        {ImplNames::NVDEC, "CODEC_ID_H263", 352, 288, Proc::PixFmt::Nv12},
    };
    for (const auto& row : rows) {
        const Pointer<FakeStreamVideo> stream(new FakeStreamVideo(row.implementation, row.codecId));
        const auto frame = stream->GetNextFrame();
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->GetFrameInfo().width, row.width);
        EXPECT_EQ(frame->GetFrameInfo().height, row.height);
        EXPECT_EQ(frame->GetPixelFormat(), row.pixelFormat);
        EXPECT_EQ(frame->GetFrameLength(), 25000);
        EXPECT_EQ(stream->GetFormatCodec()->GetPixelFormat(), row.pixelFormat);
    }
}

/// Checks how many frames a stream delivers after each seek. `count` is their sum so far.
void ExpectFrames(Proc::IStream& stream, std::int64_t frameLength) {
    const struct {
        std::int64_t position;
        int frames;
        const char* count;
    } rows[] = {
        {0, 1, "1"},
        {0, 1, "2"},
        {1, 0, "2"},
        {std::numeric_limits<std::int64_t>::max(), 0, "2"},
        {-frameLength, 2, "4"},
    };
    for (const auto& row : rows) {
        stream.Seek(row.position, {});
        for (int i = 0; i < row.frames; ++i) {
            const auto frame = boost::dynamic_pointer_cast<Proc::IFrame>(stream.ReadNext());
            ASSERT_TRUE(frame) << row.position;
            EXPECT_EQ(frame->GetFrameTime(), row.position + i * frameLength);
        }
        EXPECT_FALSE(stream.ReadNext()) << row.position;
        const auto statistic = stream.GetStatistic().GetItems().at(0);
        EXPECT_EQ(statistic.Get("count"), row.count);
        EXPECT_NE(statistic.Get("time"), "0");  // the reads that find the end count too
    }
}

TEST(FakeStream, DeliversOneFrameFromEachStart) {
    const Pointer<Proc::IStream> video(new FakeStreamVideo(ImplNames::FFMPEG, "CODEC_ID_H263"));
    EXPECT_EQ(video->GetStatistic().GetItems().at(0).Get("time"), "0");
    ExpectFrames(*video, 25000);

    const Pointer<FakeStreamAudio> audio(new FakeStreamAudio);
    EXPECT_EQ(audio->GetDuration(), 23);
    const std::int64_t length = audio->GetNextFrame()->GetFrameLength();
    EXPECT_GT(length, 0);
    ExpectFrames(*Pointer<Proc::IStream>(new FakeStreamAudio), length);
}

}  // namespace
}  // namespace Tarnex::Core::Utils
