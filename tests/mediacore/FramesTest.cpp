#include "core/media/Frames.h"

#include <gtest/gtest.h>

#include "core/support/Exception.h"

namespace Tarnex::Proc {
namespace {

TEST(Frames, PlanesHoldThePictureAlsoOfOddSize) {
    const FrameInfo info{35, 5, 1, 1};
    for (const PixFmt format : {PixFmt::Nv12, PixFmt::Yuv420p}) {
        const auto frame = CreateFactoryDataVideoFF()->CreateFrame({1, 1, 1}, format, info);
        const std::vector<Plane>& planes = frame->GetPlanes();
        ASSERT_EQ(planes.size(), format == PixFmt::Nv12 ? 2U : 3U);
        const int chromaBytes = format == PixFmt::Nv12 ? 36 : 18;
        for (const Plane& plane : planes) {
            const bool isLuma = &plane == planes.data();
            const int width = isLuma ? 35 : chromaBytes;
            EXPECT_EQ(plane.height, isLuma ? 5 : 3);
            EXPECT_GE(plane.stride, width);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(plane.data) % 32, 0U);
            const std::uint8_t* lastRow =
                plane.data + std::ptrdiff_t{plane.height - 1} * plane.stride;
            EXPECT_EQ(lastRow[0], isLuma ? 16 : 128);
            EXPECT_EQ(lastRow[width - 1] > 128, isLuma);
        }
    }
}

TEST(Frames, SilenceLastsAsLongAsItsSamples) {
    SampleInfo info;
    info.Init(SampleFormats::S16, 44100, ChannelLayout::Stereo);
    const auto frame = CreateFactoryDataAudioFF()->CreateFrame(info, 2);
    EXPECT_EQ(frame->GetSampleCount(), 16384U);
    EXPECT_EQ(frame->GetFrameLength(), 371) << "16384 samples in milliseconds";
    EXPECT_EQ(frame->GetSamples()[16384 * 4 - 1], 0);
}

TEST(Frames, ImpossibleOnesAreRefused) {
    const auto video = CreateFactoryDataVideoFF();
    EXPECT_THROW(video->CreateFrame({1, 1, 1}, static_cast<PixFmt>(1), {16, 16, 1, 1}), Exception);
    EXPECT_THROW(video->CreateFrame({1, 1, 1}, PixFmt::Nv12, {16, 0, 1, 1}), Exception);
    EXPECT_THROW(video->CreateFrame({1, 1, 1}, PixFmt::Nv12, {1 << 30, 4, 1, 1}), Exception);
    EXPECT_THROW(CreateFactoryDataAudioFF()->CreateFrame({}, 1), Exception) << "no rate";
}

}  // namespace
}  // namespace Tarnex::Proc
