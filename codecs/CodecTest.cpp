#include "codecs/CodecTest.h"

#include "core/media/AppLocations.h"
#include "core/media/ClientAPI.h"
#include "core/media/CoreManager.h"
#include "core/media/Presets.h"
#include "core/support/Constants.h"
#include "core/support/ExceptionText.h"
#include "core/support/ioPath.h"
#include "reporting/Logging.h"
#include "streams/FakeStreamAudio.h"
#include "streams/FakeStreamVideo.h"
#include "streams/TestColorSpace.h"

namespace Tarnex::Core::Utils {
namespace {

using Conf::IPreset;
using Proc::ICodedStream;
using Proc::IFormatCodecAudio;
using Proc::IFormatCodecVideo;
using Proc::ImplNames;
using Proc::IsAudioCodec;
using Proc::IStream;
using Proc::IStreamAudio;
using Proc::IStreamVideo;
using Proc::IsVideoCodec;
using Proc::MediaKind;
using Proc::Pointer;

Pointer<Proc::ICodecFactory> GetCodecFactory() {
    return CoreManager::Instance().GetCodecFactory();
}

/// The first entry whose whole path contains the codec id. Empty if there is none.
ioPath FindSampleFile(const ioPath& directory, const std::string& codecId) {
    try {
        for (const auto& entry : directory.iterator()) {
            ioPath path(entry.path().string());
            if (!path.empty() && path.utf8string().find(codecId) != std::string::npos) {
                return path;
            }
        }
    } catch (const boost::filesystem::filesystem_error&) {
        return {};  // Without the directory there are no samples: use the synthetic stream.
    }
    return {};
}

bool IsStreamOf(const ICodedStream& stream, const std::string& codecId) {
    if (stream.GetCodecFormat()->GetCodecID() != codecId) {
        return false;
    }
    const MediaKind kind = stream.GetMediaKind();
    return (kind == MediaKind::Video && IsVideoCodec(codecId)) ||
           (kind == MediaKind::Audio && IsAudioCodec(codecId));
}

Pointer<ICodedStream> OpenSampleStream(const CodecConfig& config, const ioPath& sample) {
    const auto reader = ClientAPI::OpenSource(sample);
    for (std::size_t index = 0; index < reader->GetStreamCount(); ++index) {
        Pointer<ICodedStream> stream = reader->GetStream(index);
        if (stream && IsStreamOf(*stream, config.GetCodecId())) {
            return stream;
        }
    }
    return {};
}

Pointer<IStream> CreateFakeStream(const CodecConfig& config) {
    if (IsVideoCodec(config.GetCodecId())) {
        return new FakeStreamVideo(config.GetImplementation(), config.GetCodecId());
    }
    if (IsAudioCodec(config.GetCodecId())) {
        return new FakeStreamAudio;
    }
    return {};
}

Pointer<IFormatCodecVideo> CreateVideoFormat(const std::string& codecId) {
    auto format = IFormatCodecVideo::Create();
    const auto helper = Conf::CreateDataHelper(IPreset::KEY_FILTER_VIDEO_CODEC, codecId);
    format->SetProperty(helper->GetPresetProperty());
    format->SetColorSpace(TEST_COLOR_SPACE);
    return format;
}

Pointer<IFormatCodecAudio> CreateAudioFormat(const std::string& codecId) {
    auto format = IFormatCodecAudio::Create();
    const auto helper = Conf::CreateDataHelper(IPreset::KEY_FILTER_AUDIO_CODEC, codecId);
    format->SetProperty(helper->GetPresetProperty());
    return format;
}

/// Whether FFmpeg encodes the input of this codec's decoder test. A build of it may
/// lack the other encoders, so for those the factory chooses the implementation.
bool UsesFfmpegEncoder(const std::string& codecId) {
    return codecId != IFormatCodecVideo::CODEC_ID_H265 &&
           codecId != IFormatCodecAudio::CODEC_ID_AC3;
}

Pointer<ICodedStream> CreateVideoEncoder(const CodecConfig& config, const Pointer<IStream>& source,
                                         bool useTestedImplementation) {
    const auto stream = boost::dynamic_pointer_cast<IStreamVideo>(source);
    const Proc::Property property = CreateVideoFormat(config.GetCodecId())->GetProperty();
    const auto factory = GetCodecFactory();
    if (useTestedImplementation) {
        return factory->CreateVideoEncoder(stream, property, config.GetImplementation(), {});
    }
    if (UsesFfmpegEncoder(config.GetCodecId())) {
        return factory->CreateVideoEncoder(stream, property, ImplNames::FFMPEG, {});
    }
    return factory->CreateDefaultVideoEncoder(stream, property);
}

Pointer<ICodedStream> CreateAudioEncoder(const CodecConfig& config, const Pointer<IStream>& source,
                                         bool useTestedImplementation) {
    const auto stream = boost::dynamic_pointer_cast<IStreamAudio>(source);
    const Proc::Property property = CreateAudioFormat(config.GetCodecId())->GetProperty();
    const auto factory = GetCodecFactory();
    if (useTestedImplementation) {
        return factory->CreateAudioEncoder(stream, property, config.GetImplementation(), {});
    }
    if (UsesFfmpegEncoder(config.GetCodecId())) {
        return factory->CreateAudioEncoder(stream, property, ImplNames::FFMPEG, {});
    }
    return factory->CreateDefaultAudioEncoder(stream, property);
}

Pointer<ICodedStream> CreateEncoder(const CodecConfig& config, const Pointer<IStream>& source,
                                    bool useTestedImplementation) {
    if (IsVideoCodec(config.GetCodecId())) {
        return CreateVideoEncoder(config, source, useTestedImplementation);
    }
    if (IsAudioCodec(config.GetCodecId())) {
        return CreateAudioEncoder(config, source, useTestedImplementation);
    }
    // Contract: parents match this text; keep it verbatim.
    LogTagged(WARNING_TAG, "Unsupported media type ");
    return {};
}

Pointer<IStream> CreateDecoder(const CodecConfig& config, const Pointer<ICodedStream>& input) {
    const auto factory = GetCodecFactory();
    if (IsVideoCodec(config.GetCodecId())) {
        return factory->CreateVideoDecoder(input, config.GetImplementation());
    }
    if (IsAudioCodec(config.GetCodecId())) {
        return factory->CreateAudioDecoder(input, config.GetImplementation());
    }
    // Contract: parents match this text; keep it verbatim.
    LogTagged(WARNING_TAG, "Unsupported media type ");
    return {};
}

/// A stream from the codec's sample file. Without such a file, an encoder of a synthetic stream.
/// Contract: parents match both log lines; keep them verbatim.
Pointer<ICodedStream> GetDecoderInput(const CodecConfig& config, InputLog* logInput) {
    const ioPath samples =
        AppLocations::GetLocations().GetApplicationDirectory() / "resources" / "codecSamples";
    const ioPath sample = FindSampleFile(samples, config.GetCodecId());
    if (sample.exists()) {
        logInput("Using test file: " + sample.filename().utf8string());
        return OpenSampleStream(config, sample);
    }
    logInput("Using FakeStream");
    return CreateEncoder(config, CreateFakeStream(config), false);
}

void ReadOnce(IStream& coder) {
    coder.Seek(0, {});
    coder.Prepare();
    coder.ReadNext();
}

// Contract: parents match both texts; keep them verbatim.
std::string TestDecoder(const CodecConfig& config, InputLog* logInput) {
    const Pointer<ICodedStream> input = GetDecoderInput(config, logInput);
    if (!input) {
        return config.GetCodecId() + " stream not found";
    }
    const Pointer<IStream> decoder = CreateDecoder(config, input);
    if (!decoder) {
        return "Cannot create decoder : " + config.GetID();
    }
    ReadOnce(*decoder);
    return {};
}

// Contract: parents match this text, "Can" included; keep it verbatim.
std::string TestEncoder(const CodecConfig& config) {
    const Pointer<ICodedStream> encoder = CreateEncoder(config, CreateFakeStream(config), true);
    if (!encoder) {
        return "Can create encoder: " + config.GetID();
    }
    ReadOnce(*encoder);
    return {};
}

}  // namespace

std::string TestCodec(const CodecConfig& config, InputLog* logInput) {
    try {
        switch (static_cast<CoderType::Type>(config.GetCoderType())) {
            case CoderType::Decoder:
                return TestDecoder(config, logInput);
            case CoderType::Encoder:
                return TestEncoder(config);
            case CoderType::None:
                break;
        }
        return {};
    } catch (...) {
        return GetCurrentExceptionText();
    }
}

}  // namespace Tarnex::Core::Utils
