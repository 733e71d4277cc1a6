#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "core/support/Exception.h"
#include "tests/modules/Coders.h"

// x265 leaks parts of its encoders, and GLib a table that it creates when it is loaded. The latter
// shows only in full call stacks.
extern "C" TARNEX_API const char* __lsan_default_suppressions() {
    return "leak:libx265.so\nleak:call_init\n";
}
extern "C" TARNEX_API const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}

namespace Tarnex::Tests {
namespace {

constexpr const char* IMPLEMENTATION = Proc::ImplNames::MEDIA_FOUNDATION;

/// The synthetic picture is a ramp from dark to bright, which coding roughly keeps.
bool IsPicture(const Proc::IFrameVideo& frame, int width) {
    const Proc::Plane& luma = frame.GetPlanes()[0];
    const std::uint8_t* row = luma.data + static_cast<std::ptrdiff_t>(luma.stride) * 50;
    for (int x = width / 16; x < width; x += width / 16) {
        if (std::abs(row[x] - (16 + x * 219 / width)) > 24) {
            return false;
        }
    }
    return frame.GetFrameInfo().width == width;
}

bool IsSound(const Proc::IFrameAudio& frame) {
    return frame.GetSampleCount() > 0 && frame.GetFrameLength() > 0 &&
           frame.GetSampleInfo().rate >= 44100 &&
           frame.GetSampleInfo().layout == Proc::ChannelLayout::Stereo;
}

std::string CheckPacket(const std::string& codecId) {
    const auto packet =
        boost::dynamic_pointer_cast<Proc::IPacket>(Encode(codecId, IMPLEMENTATION)->ReadNext());
    const bool isFirst =
        packet && packet->GetSize() > 0 && packet->GetTime() == 0 && packet->IsKey();
    return isFirst ? "" : "no first packet";
}

/// Reads the decoder again after a seek.
std::string CheckFrames(const std::string& codecId, const char* encoder) {
    const auto decoder = Decode(Encode(codecId, encoder), IMPLEMENTATION);
    for (int round = 0; round < 2; ++round) {
        decoder->Seek(0, nullptr);
        const auto frame = decoder->ReadNext();
        const auto* const picture = dynamic_cast<const Proc::IFrameVideo*>(frame.get());
        const auto* const sound = dynamic_cast<const Proc::IFrameAudio*>(frame.get());
        const int width = codecId == "CODEC_ID_DVVIDEO" ? 720 : 1920;
        if (!(picture != nullptr && IsPicture(*picture, width)) &&
            !(sound != nullptr && IsSound(*sound))) {
            return "not what was encoded";
        }
    }
    return {};
}

TEST(Coders, ReturnWhatWasEncoded) {
    for (const std::string& id : Factory()->GetEncoderCodecs(IMPLEMENTATION)) {
        EXPECT_EQ(CheckPacket(id), "") << id;
        EXPECT_EQ(CheckFrames(id, IMPLEMENTATION), "") << id;
    }
    if (WITH_FFMPEG_CODECS) {
        for (const std::string& id : Factory()->GetDecoderCodecs(IMPLEMENTATION)) {
            EXPECT_EQ(CheckFrames(id, Proc::ImplNames::FFMPEG), "") << id;
        }
    }
}

}  // namespace
}  // namespace Tarnex::Tests
