#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/media/ClientAPI.h"
#include "core/media/Factories.h"
#include "core/support/Exception.h"
#include "tests/modules/Coders.h"

namespace Tarnex::Tests {
namespace {

using testing::HasSubstr;

int CountFrames(Proc::IStream& stream) {
    int count = 0;
    while (stream.ReadNext()) {
        ++count;
    }
    return count;
}

Pointer<Proc::ICodedStream> OpenFirstStream(const std::filesystem::path& file) {
    return Core::ClientAPI::OpenSource(file.string())->GetStream(0);  // outlives its reader
}

/// A codec's sample is the first whose path holds the codec's id.
TEST(Samples, EachHoldsTheOneCodecOfItsName) {
    std::vector<std::string> ids = Factory()->GetDecoderCodecs(Proc::ImplNames::FFMPEG);
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLES)) {
        ++count;
        const Pointer<Proc::ICodedStream> stream = OpenFirstStream(entry.path());
        ASSERT_TRUE(stream) << entry.path();
        const std::string held = stream->GetCodecFormat()->GetCodecID();
        for (const std::string& id : ids) {
            const bool isNamed = entry.path().string().find(id) != std::string::npos;
            EXPECT_EQ(isNamed, id == held) << entry.path() << " " << id;
        }
        stream->Seek(0, {});
        EXPECT_GE(CountFrames(*Decode(stream)), 5) << entry.path();
    }
    EXPECT_EQ(count, 4);
}

TEST(Samples, AStreamGoesBackToItsBeginning) {
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLES)) {
        const Pointer<Proc::IStream> decoder = Decode(OpenFirstStream(entry.path()));
        const int frames = CountFrames(*decoder);
        decoder->Seek(0, {});
        EXPECT_EQ(CountFrames(*decoder), frames) << entry.path();
    }
}

/// The text with which opening or writing fails.
template <class Action>
std::string FailureOf(Action action) {
    try {
        action();
        return "no failure";
    } catch (const Exception& failure) {
        return failure.what();
    }
}

TEST(Files, FailuresNameTheFileAndTheReason) {
    const std::filesystem::path directory = testing::TempDir();
    const std::string text = directory / "some.txt";
    std::ofstream(text) << "no media\n";
    EXPECT_THAT(FailureOf([&] { Core::ClientAPI::OpenSource(text); }),
                HasSubstr("File " + text + ": opening: Invalid data"));
    const std::string missing = directory / "missing.webm";
    EXPECT_THAT(FailureOf([&] { Core::ClientAPI::OpenSource(missing); }),
                HasSubstr("File " + missing + ": opening: No such file"));

    const auto write = [](const std::string& path) {
        return FailureOf([&] { Proc::MuxerFactoryImpl::WriteFile(path, Encode("CODEC_ID_VP9")); });
    };
    EXPECT_THAT(write(directory / "vp9.nothing"), HasSubstr("choosing a container"));
    EXPECT_THAT(write(directory / "no/such/directory.webm"), HasSubstr("creating: No such file"));
    EXPECT_THAT(write(directory / "vp9.flac"), HasSubstr("writing the header"));
}

}  // namespace
}  // namespace Tarnex::Tests
