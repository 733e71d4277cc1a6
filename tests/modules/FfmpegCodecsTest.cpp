extern "C" {
#include <libavcodec/avcodec.h>
}

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <thread>

#include "modules/common/CoderStream.h"
#include "tests/modules/Coders.h"

namespace Tarnex::Tests {
namespace {

using Proc::ImplNames;
using testing::HasSubstr;

/// All ids for which libavcodec itself finds a coder.
std::vector<std::string> FindIds(const AVCodec* (*find)(AVCodecID)) {
    std::vector<std::string> ids;
    const AVCodecDescriptor* descriptor = nullptr;
    while ((descriptor = avcodec_descriptor_next(descriptor)) != nullptr) {
        if (descriptor->type <= AVMEDIA_TYPE_AUDIO && find(descriptor->id) != nullptr) {
            std::string name = descriptor->name;
            std::transform(name.begin(), name.end(), name.begin(), ::toupper);
            ids.push_back("CODEC_ID_" + (name == "HEVC" ? "H265" : name));
        }
    }
    return ids;
}

/// Why no frame passes `check`; empty if one does. Some coders begin with a frame of silence.
template <class Data>
std::string Read(const Pointer<Proc::IStream>& coder, bool (*check)(const Data&)) {
    try {
        coder->Seek(0, {});
        coder->Prepare();
        while (const auto data = boost::dynamic_pointer_cast<Data>(coder->ReadNext())) {
            if (check(*data)) {
                return "";
            }
        }
        return "nothing of use";
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

std::string ReadPacket(const Pointer<Proc::IStream>& encoder) {
    return Read<Proc::IPacket>(encoder,
                               [](const Proc::IPacket& packet) { return packet.GetSize() > 0; });
}

/// The synthetic picture is a ramp from dark to bright, except in the middle; coding keeps that.
bool IsRamp(const Proc::IFrameVideo& frame) {
    const Proc::Plane& luma = frame.GetPlanes().front();
    const std::uint8_t* row =
        luma.data + static_cast<std::ptrdiff_t>(luma.height / 2) * luma.stride;
    const int width = frame.GetFrameInfo().width;
    return row[width / 8] + 50 < row[width - width / 8] && frame.GetFrameLength() > 0;
}

/// The synthetic sound is a tone with a root mean square of 4600.
bool IsTone(const Proc::IFrameAudio& frame) {
    const auto* samples = reinterpret_cast<const std::int16_t*>(frame.GetSamples());
    const auto perChannel = static_cast<std::int64_t>(frame.GetSampleCount());
    const std::size_t count =
        frame.GetSampleCount() * static_cast<std::size_t>(frame.GetSampleInfo().layout);
    const double loudness = std::sqrt(std::inner_product(samples, samples + count, samples, 0.0) /
                                      static_cast<double>(count));
    return loudness > 1000 && loudness < 6000 &&
           frame.GetFrameLength() == av_rescale(perChannel, 1000, frame.GetSampleInfo().rate);
}

std::string ReadFrame(const Pointer<Proc::IStream>& decoder) {
    return boost::dynamic_pointer_cast<Proc::IStreamVideo>(decoder)
               ? Read<Proc::IFrameVideo>(decoder, IsRamp)
               : Read<Proc::IFrameAudio>(decoder, IsTone);
}

TEST(FfmpegCodecs, OffersWhatLibavcodecHas) {
    EXPECT_THAT(Factory()->GetEncoderCodecs(ImplNames::FFMPEG),
                testing::UnorderedElementsAreArray(FindIds(avcodec_find_encoder)));
    EXPECT_THAT(Factory()->GetDecoderCodecs(ImplNames::FFMPEG),
                testing::UnorderedElementsAreArray(FindIds(avcodec_find_decoder)));
}

TEST(FfmpegCodecs, EachEncoderReturnsAPacket) {
    for (const std::string& id : FindIds(avcodec_find_encoder)) {
        EXPECT_EQ(ReadPacket(Encode(id)), "") << id;
    }
}

TEST(FfmpegCodecs, EachDecoderDecodesItsEncodersOutput) {
    const std::vector<std::string> encoders = FindIds(avcodec_find_encoder);
    for (const std::string& id : FindIds(avcodec_find_decoder)) {
        if (std::find(encoders.begin(), encoders.end(), id) != encoders.end()) {
            EXPECT_EQ(ReadFrame(Decode(Encode(id))), "") << id;
        }
    }
}

TEST(FfmpegCodecs, TestsOfOneCodecRunSideBySide) {
    for (const char* id : {"CODEC_ID_H264", "CODEC_ID_AV1", "CODEC_ID_MP3"}) {
        std::string failures[2];
        std::thread other([&] { failures[1] = ReadFrame(Decode(Encode(id))); });
        failures[0] = ReadFrame(Decode(Encode(id)));
        other.join();
        EXPECT_EQ(failures[0] + failures[1], "") << id;
    }
}

/// Damages the packet with that number in its stream.
using Damage = void (*)(int number, std::vector<std::uint8_t>& packet);

/// Packets that libav didn't make, in a stream that isn't libav's either.
class ForeignStream : public Modules::CoderStream<Proc::ICodedStream> {
public:
    explicit ForeignStream(Pointer<Proc::ICodedStream> source, Damage damage = nullptr)
        : CoderStream(source, "foreign"),
          source(std::move(source)),
          damage(damage),
          format(this->source->GetCodecFormat()) {}
    Proc::MediaKind GetMediaKind() const override { return source->GetMediaKind(); }
    Pointer<Proc::IFormatCodec> GetCodecFormat() const override { return format; }

protected:
    Pointer<Proc::IData> MakeNext() override {
        const auto packet = boost::dynamic_pointer_cast<Proc::IPacket>(source->ReadNext());
        if (!packet) {
            return {};
        }
        std::vector<std::uint8_t> data(packet->GetData(), packet->GetData() + packet->GetSize());
        if (damage != nullptr) {
            damage(number++, data);
        }
        return new ForeignPacket(std::move(data));
    }
    void Restart() override {}

private:
    Pointer<Proc::ICodedStream> source;
    Damage damage;
    Pointer<Proc::IFormatCodec> format;
    int number = 0;
};

TEST(FfmpegCodecs, DecodesStreamsThatAreNotLibavs) {
    for (const char* id : {"CODEC_ID_H264", "CODEC_ID_VP9", "CODEC_ID_AAC", "CODEC_ID_VORBIS"}) {
        EXPECT_EQ(ReadFrame(Decode(new ForeignStream(Encode(id)))), "") << id;
    }
}

TEST(FfmpegCodecs, FailureIncludesLibavsLog) {
    const Damage garble = [](int, std::vector<std::uint8_t>& packet) {
        std::fill(packet.begin(), packet.end(), std::uint8_t{0xA5});
    };
    EXPECT_THAT(
        ReadFrame(Decode(new ForeignStream(Encode("CODEC_ID_PNG"), garble))),
        testing::StartsWith("Decoder png: decoding failed: Invalid data found when processing "
                            "input; libav logged: Invalid PNG signature"));
}

TEST(FfmpegCodecs, SkipsATruncatedFrame) {
    const Damage cutFirst = [](int number, std::vector<std::uint8_t>& packet) {
        if (number == 0) {
            packet.erase(packet.begin(),
                         packet.begin() + static_cast<std::ptrdiff_t>(packet.size() / 2));
        }
    };
    EXPECT_EQ(ReadFrame(Decode(new ForeignStream(Encode("CODEC_ID_AC3"), cutFirst))), "");
}

TEST(FfmpegCodecs, NoOutputIsAFailureAfterEachStart) {
    const auto input = Encode("CODEC_ID_MP2");
    const auto decoder = Decode(input);
    EXPECT_TRUE(decoder->ReadNext());
    decoder->Seek(0, {});
    while (input->ReadNext()) {
    }
    EXPECT_EQ(ThrownBy([&] { decoder->ReadNext(); }), "Decoder mp2: gave no output");
    input->Seek(1'000'000, {});
    EXPECT_EQ(ThrownBy([&] { input->ReadNext(); }), "Encoder mp2: gave no output");
}

TEST(FfmpegCodecs, FormatDescribesTheFrames) {
    const Proc::ColorSpace wide{9, 16, 9};  // BT.2020 with PQ
    const struct {
        const char* id;
        const char* source;
        Proc::PixFmt pixelFormat;
    } rows[] = {{"CODEC_ID_H264", ImplNames::FFMPEG, Proc::PixFmt::Yuv420p},
                {"CODEC_ID_RAWVIDEO", ImplNames::NVDEC, Proc::PixFmt::Nv12}};
    for (const auto& row : rows) {
        const Pointer<Core::Utils::FakeStreamVideo> source(
            new Core::Utils::FakeStreamVideo(row.source, row.id));
        source->GetFormatCodec()->SetColorSpace(wide);
        const auto decoder = boost::dynamic_pointer_cast<Proc::IStreamVideo>(
            Decode(Encode(row.id, source, ImplNames::FFMPEG)));
        const auto frame = decoder->GetNextFrame();
        EXPECT_EQ(frame->GetPixelFormat(), row.pixelFormat) << row.id;
        EXPECT_EQ(frame->GetFrameLength(), 40) << row.id;
        EXPECT_EQ(decoder->GetFormatCodec()->GetPixelFormat(), row.pixelFormat) << row.id;
        for (const Proc::ColorSpace& space :
             {frame->GetColorSpace(), decoder->GetFormatCodec()->GetColorSpace()}) {
            EXPECT_EQ(space.primaries, wide.primaries) << row.id;
            EXPECT_EQ(space.transfer, wide.transfer) << row.id;
            EXPECT_EQ(space.matrix, wide.matrix) << row.id;
        }
    }
}

TEST(FfmpegCodecs, RefusesAbsurdFormats) {
    const struct {
        void (*spoil)(Proc::IFormatCodecVideo&);
        const char* text;
    } pictures[] = {
        {[](auto& format) { format.InitByPixelAspect(1, 1, 1, 1); }, "1x1 pixels"},
        {[](auto& format) { format.InitByPixelAspect(640, 100000, 1, 1); }, "640x100000"},
        {[](auto& format) { format.InitByPixelAspect(640, 480, 0, 1); }, "aspect 0:1"},
        {[](auto& format) { format.SetFrameRate(25, 0); }, "at 25/0"},
    };
    for (const auto& row : pictures) {
        const Pointer<Core::Utils::FakeStreamVideo> source(
            new Core::Utils::FakeStreamVideo(ImplNames::FFMPEG, "CODEC_ID_MPEG4"));
        row.spoil(*source->GetFormatCodec());
        EXPECT_THAT(ThrownBy([&] { Encode("CODEC_ID_MPEG4", source, ImplNames::FFMPEG); }),
                    HasSubstr(row.text));
    }
    const Pointer<Core::Utils::FakeStreamAudio> source(new Core::Utils::FakeStreamAudio());
    source->GetFormatCodec()->SetSampleInfo({Proc::SampleFormats::S16, 0});
    EXPECT_THROW(Encode("CODEC_ID_MP2", source, ImplNames::FFMPEG), Exception);

    const Pointer<ForeignStream> coded(new ForeignStream(Encode("CODEC_ID_VP8")));
    boost::dynamic_pointer_cast<Proc::IFormatCodecVideo>(coded->GetCodecFormat())
        ->InitByPixelAspect(0, 480, 1, 1);
    EXPECT_EQ(ThrownBy([&] { Decode(coded); }), "Decoder vp8: can't decode 0x480 pixels");
}

TEST(NvdecCodecs, GivesTheReasonWithoutAGpu) {
    EXPECT_THAT(Factory()->GetDecoderCodecs(ImplNames::NVDEC), testing::Contains("CODEC_ID_AV1"));
    try {
        const auto packet = Encode("CODEC_ID_H264", ImplNames::NVDEC)->ReadNext();
        EXPECT_TRUE(packet);  // there is one
    } catch (const Exception& failure) {
        EXPECT_THAT(failure.what(), HasSubstr("Encoder h264_nvenc: opening failed: "));
        EXPECT_THAT(failure.what(), HasSubstr("libav logged: "));
    }
}

}  // namespace
}  // namespace Tarnex::Tests
