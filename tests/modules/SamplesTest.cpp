#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

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

/// A codec's sample is the first file whose path contains the codec's id.
TEST(Samples, EachHoldsTheCodecInItsName) {
    std::vector<std::string> ids = Factory()->GetDecoderCodecs(Proc::ImplNames::FFMPEG);
    std::set<std::string> all;
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLES)) {
        const Pointer<Proc::ICodedStream> stream = OpenFirstStream(entry.path());
        ASSERT_TRUE(stream) << entry.path();
        const std::string held = stream->GetCodecFormat()->GetCodecID();
        all.insert(held);
        for (const std::string& id : ids) {
            const bool isNamed = entry.path().string().find(id) != std::string::npos;
            EXPECT_EQ(isNamed, id == held) << entry.path() << " " << id;
        }
        stream->Seek(0, {});
        EXPECT_GE(CountFrames(*Decode(stream)), 4) << entry.path();
    }
    const std::vector<std::string> encoded = Factory()->GetEncoderCodecs(Proc::ImplNames::FFMPEG);
    for (const std::string& id : Factory()->GetDecoderCodecs(Proc::ImplNames::NVDEC)) {
        const bool canBeMade = std::find(encoded.begin(), encoded.end(), id) != encoded.end();
        EXPECT_EQ(all.contains(id), canBeMade) << id << ", which a graphics card decodes";
    }
}

TEST(Samples, AStreamSeeksToItsBeginning) {
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLES)) {
        const Pointer<Proc::IStream> decoder = Decode(OpenFirstStream(entry.path()));
        const int frames = CountFrames(*decoder);
        decoder->Seek(0, {});
        EXPECT_EQ(CountFrames(*decoder), frames) << entry.path();
    }
}

/// The text of a failure to open or write.
template <class Action>
std::string FailureOf(Action action) {
    try {
        action();
        return "no failure";
    } catch (const Exception& failure) {
        return failure.what();
    }
}

/// A truncated file loses the index at its end; an Ogg file also loses its incomplete pages.
TEST(Samples, ATruncatedFileIsDecodedToItsEnd) {
    const std::filesystem::path part = std::filesystem::path(testing::TempDir()) / "part";
    std::set<std::string> decoded;
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLES)) {
        std::filesystem::copy_file(entry.path(), part,
                                   std::filesystem::copy_options::overwrite_existing);
        std::filesystem::resize_file(part, entry.file_size() * 7 / 8);
        const std::string kind = entry.path().extension();
        const std::string failure = FailureOf([&] {
            EXPECT_TRUE(Decode(OpenFirstStream(part))->ReadNext()) << entry.path();
            decoded.insert(kind);
        });
        if (!decoded.contains(kind)) {
            EXPECT_THAT(failure, HasSubstr("File " + part.string()));
        }
    }
    EXPECT_THAT(decoded, testing::UnorderedElementsAre(".ac3", ".avi", ".dv", ".flac", ".mkv",
                                                       ".mp3", ".mpg", ".ogv", ".ts", ".webm"));
}

TEST(Files, FailuresNameTheFileAndTheReason) {
    const std::filesystem::path directory = testing::TempDir();
    std::ofstream(directory / "some.txt") << "no media\n";
    std::ofstream(directory / "empty") << "";
    std::filesystem::create_directory(directory / "folder");
    const std::pair<const char*, const char*> reasons[] = {{"some.txt", "Invalid data"},
                                                           {"empty", "Invalid data"},
                                                           {"folder", "Is a directory"},
                                                           {"missing.webm", "No such file"}};
    for (const auto& [name, reason] : reasons) {
        const std::string path = directory / name;
        EXPECT_THAT(FailureOf([&] { Core::ClientAPI::OpenSource(path); }),
                    HasSubstr("File " + path + ": opening failed: " + reason));
    }

    const auto write = [](const std::string& path) {
        return FailureOf([&] { Proc::MuxerFactoryImpl::WriteFile(path, Encode("CODEC_ID_VP9")); });
    };
    EXPECT_THAT(write(directory / "vp9.nothing"), HasSubstr("choosing a container"));
    EXPECT_THAT(write(directory / "no/such/directory.webm"),
                HasSubstr("creating failed: No such file"));
    EXPECT_THAT(write(directory / "vp9.flac"), HasSubstr("writing the header"));
}

}  // namespace
}  // namespace Tarnex::Tests
