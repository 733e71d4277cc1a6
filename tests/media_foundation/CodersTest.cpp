#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <vector>

#include "core/support/Exception.h"
#include "tests/media_foundation/TestCore.h"

// x265 doesn't free all of what its encoders allocate, and GLib gives up a table that it makes when
// it is loaded. The latter shows only in full call stacks.
extern "C" TARNEX_API const char* __lsan_default_suppressions() {
    return "leak:libx265.so\nleak:call_init\n";
}
extern "C" TARNEX_API const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}

namespace Tarnex::Tests {

namespace {

struct Row {
    const char* id;
    bool isEncoded = true;
};

constexpr Row ROWS[] = {{"CODEC_ID_AAC"},           {"CODEC_ID_MP3"},
                        {"CODEC_ID_OPUS"},          {"CODEC_ID_VORBIS"},
                        {"CODEC_ID_FLAC"},          {"CODEC_ID_AC3", false},
                        {"CODEC_ID_H264"},          {"CODEC_ID_H265"},
                        {"CODEC_ID_VP8"},           {"CODEC_ID_VP9"},
                        {"CODEC_ID_AV1"},           {"CODEC_ID_MJPEG"},
                        {"CODEC_ID_THEORA"},        {"CODEC_ID_MPEG2VIDEO", false},
                        {"CODEC_ID_DVVIDEO", false}};

/// An empty text, or what is wrong with the picture. The synthetic picture isn't a single colour,
/// and a coder keeps it by and large.
std::string ComparePictures(const Proc::IFrameVideo& coded, const Proc::IFrameVideo& original) {
    const Proc::FrameInfo info = original.GetFrameInfo();
    if (coded.GetFrameInfo().width != info.width || coded.GetFrameInfo().height != info.height) {
        return "the picture's size is wrong";
    }
    const Proc::Plane& left = coded.GetPlanes()[0];
    const Proc::Plane& right = original.GetPlanes()[0];
    for (int x = 8; x < info.width; x += info.width / 16) {
        const int y = info.height / 2;
        const int difference = left.data[y * left.stride + x] - right.data[y * right.stride + x];
        if (std::abs(difference) > 24) {
            return "the picture's content is wrong at " + std::to_string(x);
        }
    }
    return {};
}

std::string CheckFrame(const std::string& codecId, const Proc::IData& data) {
    if (const auto* picture = dynamic_cast<const Proc::IFrameVideo*>(&data)) {
        return ComparePictures(*picture, *MakePicture(codecId)->GetNextFrame());
    }
    const auto* sound = dynamic_cast<const Proc::IFrameAudio*>(&data);
    const bool isSound = sound != nullptr && sound->GetSampleCount() > 0 &&
                         sound->GetFrameLength() > 0 && sound->GetSampleInfo().rate >= 44100 &&
                         sound->GetSampleInfo().layout == Proc::ChannelLayout::Stereo;
    return isSound ? "" : "not the sound that was encoded";
}

/// An empty text, or why the encoder failed.
std::string Encode(const std::string& codecId) {
    try {
        const auto encoder = MakeEncoder(codecId, IMPLEMENTATION);
        const auto packet = encoder ? encoder->ReadNext() : nullptr;
        const auto* const content = dynamic_cast<Proc::IPacket*>(packet.get());
        return content != nullptr && content->GetSize() > 0 && content->GetTime() == 0 &&
                       content->IsKey()
                   ? ""
                   : codecId + ": no first packet";
    } catch (const Exception& exception) {
        return exception.what();
    }
}

/// The same of the decoder, which is read again after a seek.
std::string Decode(const std::string& codecId, const std::string& encoderImplementation) {
    try {
        const auto input = MakeEncoder(codecId, encoderImplementation);
        const auto decoder = input ? MakeDecoder(input) : nullptr;
        if (!decoder) {
            return codecId + ": no decoder";
        }
        for (int pass = 0; pass < 2; ++pass) {
            decoder->Seek(0, nullptr);
            const auto frame = decoder->ReadNext();
            const std::string problem = frame ? CheckFrame(codecId, *frame) : "no frame";
            if (!problem.empty()) {
                return std::string(codecId).append(": ").append(problem);
            }
        }
        return {};
    } catch (const Exception& exception) {
        return exception.what();
    }
}

std::string RunAll() {
    std::string failures;
    for (const Row& row : ROWS) {
        const std::string own =
            row.isEncoded ? Encode(row.id) + Decode(row.id, IMPLEMENTATION) : "";
        const std::string other = WITH_FFMPEG_CODECS ? Decode(row.id, Proc::ImplNames::FFMPEG) : "";
        for (const std::string& failure : {own, other}) {
            failures += failure.empty() ? "" : failure + '\n';
        }
    }
    return failures;
}

TEST(Coders, OffersWhatTheFrameworkHas) {
    std::vector<std::string> decoders;
    std::vector<std::string> encoders;
    for (const Row& row : ROWS) {
        decoders.emplace_back(row.id);
        if (row.isEncoded) {
            encoders.emplace_back(row.id);
        }
    }
    EXPECT_EQ(Factory()->GetDecoderCodecs(IMPLEMENTATION), decoders);
    EXPECT_EQ(Factory()->GetEncoderCodecs(IMPLEMENTATION), encoders);
}

TEST(Coders, GiveOutput) {
    EXPECT_EQ(RunAll(), "");
}

TEST(Coders, GiveOutputOnOneThreadEachSideBySide) {
    Factory();
    Core::CoreManager::Instance().GetComputingResourceManager()->computingResourcesFlag = true;
    std::vector<std::future<std::string>> runs(4);
    for (auto& run : runs) {
        run = std::async(std::launch::async, RunAll);
    }
    for (auto& run : runs) {
        EXPECT_EQ(run.get(), "");
    }
    Core::CoreManager::Instance().GetComputingResourceManager()->computingResourcesFlag = false;
}

}  // namespace

}  // namespace Tarnex::Tests
