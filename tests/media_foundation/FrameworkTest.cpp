#include <dlfcn.h>
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "core/media/StreamBase.h"
#include "tests/modules/Coders.h"

namespace {
bool isFrameworkBroken = false;
}

/// Stands before the framework's own function, which it calls unless the start is to fail.
extern "C" TARNEX_API gboolean gst_init_check(int* argc, char*** argv, GError** error) {
    if (isFrameworkBroken) {
        g_set_error_literal(error, GST_LIBRARY_ERROR, GST_LIBRARY_ERROR_INIT, "no such luck");
        return FALSE;
    }
    return reinterpret_cast<decltype(gst_init_check)*>(dlsym(RTLD_NEXT, "gst_init_check"))(
        argc, argv, error);
}

namespace Tarnex::Tests {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const char* IMPLEMENTATION = Proc::ImplNames::MEDIA_FOUNDATION;

/// A coded stream of three packets that no decoder can make anything of.
class Garbage : public Proc::StreamBase<Proc::ICodedStream> {
public:
    Garbage(const std::string& codecId, const Bytes& extraData) : StreamBase("Garbage") {
        if (Proc::IsVideoCodec(codecId)) {
            const auto video = Proc::IFormatCodecVideo::Create();
            video->InitByPixelAspect(352, 288, 1, 1);
            format = video;
        } else {
            const auto audio = Proc::IFormatCodecAudio::Create();
            Proc::SampleInfo info;
            info.rate = 44100;
            audio->SetSampleInfo(info);
            format = audio;
        }
        format->SetCodecID(codecId);
        format->SetExtraData(extraData);
    }
    Proc::MediaKind GetMediaKind() const override {
        return Proc::IsVideoCodec(format->GetCodecID()) ? Proc::MediaKind::Video
                                                        : Proc::MediaKind::Audio;
    }
    Proc::Pointer<Proc::IFormatCodec> GetCodecFormat() const override { return format; }

    void ForgetForm() {
        const std::string codecId = format->GetCodecID();
        if (Proc::IsVideoCodec(codecId)) {
            format = Proc::IFormatCodecVideo::Create();
        } else {
            format = Proc::IFormatCodecAudio::Create();
        }
        format->SetCodecID(codecId);
    }

    std::int64_t GetDuration() const override { return 0; }
    std::int64_t GetPosition() const override { return 0; }
    void Seek(std::int64_t, Proc::Pointer<Proc::IRefCountable>) override {}
    Proc::Pointer<Proc::IData> ReadNext() override {
        if (packets == 0) {
            return nullptr;
        }
        --packets;
        return new ForeignPacket(Bytes(1000, 0xFF));
    }

private:
    Proc::Pointer<Proc::IFormatCodec> format;
    int packets = 3;
};

/// The failure text of a decoder that reads garbage, empty if it takes it.
std::string DecodeGarbage(const std::string& codecId, const Bytes& extraData) {
    return ThrownBy([&] { Decode(new Garbage(codecId, extraData), IMPLEMENTATION)->ReadNext(); });
}

[[noreturn]] void UseFrameworkForTheFirstTime() {
    std::remove(std::getenv("GST_REGISTRY"));
    setenv("GST_DEBUG", "2", 1);
    const auto factory = Factory();
    const bool isLazy = Proc::IsVideoCodec("CODEC_ID_H264") && gst_is_initialized() == FALSE;
    for (const std::string& codecId : factory->GetDecoderCodecs(IMPLEMENTATION)) {
        DecodeGarbage(codecId, {});
    }
    for (const std::string& codecId : factory->GetEncoderCodecs(IMPLEMENTATION)) {
        Decode(Encode(codecId, IMPLEMENTATION), IMPLEMENTATION)->ReadNext();
    }
    g_warning("what a plugin may have to say");
    g_object_set(gst_registry_get(), "no-such-property", 1, nullptr);
    std::_Exit(isLazy && gst_is_initialized() != FALSE ? 0 : 1);
}

TEST(FrameworkDeathTest, StartsWhenItIsAskedAndKeepsQuiet) {
    ASSERT_NE(std::getenv("GST_REGISTRY"), nullptr) << "the user's own would be removed";
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // in a process where nothing has started
    EXPECT_EXIT(UseFrameworkForTheFirstTime(), testing::ExitedWithCode(0), testing::Eq(""));
}

[[noreturn]] void UseBrokenFramework() {
    isFrameworkBroken = true;
    const std::string reason = "The system's media framework doesn't start: no such luck";
    const auto factory = Factory();
    const auto decoders = factory->GetDecoderCodecs(IMPLEMENTATION);
    const auto encoders = factory->GetEncoderCodecs(IMPLEMENTATION);
    bool failAll = decoders.size() > encoders.size() && !encoders.empty();
    for (const std::string& id : decoders) {
        failAll = failAll && DecodeGarbage(id, {}) == reason;
    }
    for (const std::string& id : encoders) {
        failAll = failAll && ThrownBy([&] { Encode(id, IMPLEMENTATION); }) == reason;
    }
    std::_Exit(failAll ? 0 : 1);
}

TEST(FrameworkDeathTest, ItsCodersFailOneByOneWhereItDoesNotStart) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(UseBrokenFramework(), testing::ExitedWithCode(0), "");
}

TEST(Framework, GarbageIsAFailureThatNamesTheCodec) {
    for (const std::string& codecId : Factory()->GetDecoderCodecs(IMPLEMENTATION)) {
        const std::string text = DecodeGarbage(codecId, {});
        EXPECT_EQ(text.find("The decoder of " + codecId), 0U) << codecId << ": " << text;
    }
}

TEST(Framework, FailuresSayWhatTheElementSays) {
    EXPECT_EQ(DecodeGarbage("CODEC_ID_DVVIDEO", {}),
              "The decoder of CODEC_ID_DVVIDEO: dvdec: Could not decode stream. "
              "(Input buffer too small)");
    EXPECT_EQ(DecodeGarbage("CODEC_ID_VP8", {}), "The decoder of CODEC_ID_VP8 gave no output");
}

TEST(Framework, AbsurdStreamsAreRefused) {
    using Core::Utils::FakeStreamAudio;
    using Core::Utils::FakeStreamVideo;
    const Proc::Pointer<FakeStreamVideo> pictures(
        new FakeStreamVideo(IMPLEMENTATION, "CODEC_ID_VP8"));
    pictures->GetFormatCodec()->SetFrameRate(0, 1);
    const Proc::Pointer<FakeStreamAudio> sound(new FakeStreamAudio());
    sound->GetFormatCodec()->SetSampleInfo(
        {Proc::SampleFormats::S16, 44100, Proc::ChannelLayout{}});
    const struct {
        const char* id;
        Proc::Pointer<Proc::IStream> stream;
        const char* text;
    } rows[] = {
        {"CODEC_ID_VP8", pictures,
         "The encoder of CODEC_ID_VP8: can't encode 1920x1080 pixels of aspect 1:1 at 0/1 frames a "
         "second"},
        {"CODEC_ID_OPUS", sound,
         "The encoder of CODEC_ID_OPUS: can't encode 0 channels at 44100 Hz"},
        {"CODEC_ID_OPUS", nullptr, "There is no stream to encode"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ThrownBy([&] { Encode(row.id, row.stream, IMPLEMENTATION); }), row.text);
    }
    const char* const undecodable = " was given a stream without size, rate or channels";
    for (const std::string id : {"CODEC_ID_VP8", "CODEC_ID_OPUS"}) {
        const Proc::Pointer<Garbage> input(new Garbage(id, {}));
        input->ForgetForm();
        EXPECT_EQ(ThrownBy([&] { Decode(input, IMPLEMENTATION); }),
                  "The decoder of " + id + undecodable);
    }
}

TEST(Framework, MalformedExtraDataIsAFailure) {
    const struct {
        const char* id;
        Bytes extraData;
        const char* text;
    } rows[] = {{"CODEC_ID_VORBIS", {2, 30, 255}, "cut off"},
                {"CODEC_ID_VORBIS", {2, 1, 1, 7}, "cut off"},
                {"CODEC_ID_THEORA", {0, 42, 0x80}, "cut off"},
                {"CODEC_ID_FLAC", Bytes(33), "33 bytes"}};
    for (const auto& row : rows) {
        const std::string text = DecodeGarbage(row.id, row.extraData);
        EXPECT_NE(text.find(row.text), std::string::npos) << row.id << ": " << text;
    }
}

}  // namespace

}  // namespace Tarnex::Tests
