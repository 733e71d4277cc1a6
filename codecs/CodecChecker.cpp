#include "codecs/CodecChecker.h"

#include <glog/logging.h>

#include <algorithm>
#include <mutex>
#include <sstream>
#include <thread>

#include "core/media/AppLocations.h"
#include "core/media/ClientAPI.h"
#include "core/media/CoreManager.h"
#include "core/media/Presets.h"
#include "core/support/Constants.h"
#include "core/support/ExceptionText.h"
#include "core/support/Text.h"
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

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

Pointer<Proc::ICodecFactory> GetCodecFactory() {
    return CoreManager::Instance().GetCodecFactory();
}

/// The first entry whose whole path contains the codec id; empty if there is none.
ioPath FindSampleFile(const ioPath& directory, const std::string& codecId) {
    try {
        for (const auto& entry : directory.iterator()) {
            ioPath path(entry.path().string());
            if (!path.empty() && path.utf8string().find(codecId) != std::string::npos) {
                return path;
            }
        }
    } catch (const boost::filesystem::filesystem_error&) {
        return {};  // No directory, no samples: the synthetic stream serves.
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

/// Whether FFmpeg encodes the input of this codec's decoder test; the others leave the choice to
/// the factory, because a build of FFmpeg may lack them.
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
    LogTagged(WARNING_TAG, "Unsupported media type ");
    return {};
}

/// A stream of a sample file if there is one for the codec, else an encoder of a synthetic stream.
Pointer<ICodedStream> GetDecoderInput(const CodecConfig& config) {
    const ioPath samples =
        AppLocations::GetLocations().GetApplicationDirectory() / "resources" / "codecSamples";
    const ioPath sample = FindSampleFile(samples, config.GetCodecId());
    if (sample.exists()) {
        LOG(INFO) << "Using test file: " << sample.filename().utf8string();
        return OpenSampleStream(config, sample);
    }
    LOG(INFO) << "Using FakeStream";
    return CreateEncoder(config, CreateFakeStream(config), false);
}

void ReadOnce(IStream& coder) {
    coder.Seek(0, {});
    coder.Prepare();
    coder.ReadNext();
}

std::string TestDecoder(const CodecConfig& config) {
    const Pointer<ICodedStream> input = GetDecoderInput(config);
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

std::string TestEncoder(const CodecConfig& config) {
    const Pointer<ICodedStream> encoder = CreateEncoder(config, CreateFakeStream(config), true);
    if (!encoder) {
        return "Can create encoder: " + config.GetID();
    }
    ReadOnce(*encoder);
    return {};
}

/// Creates the coder, seeks once and reads once. The result is the failure text, empty if the coder
/// works; nothing is thrown.
std::string TestCodec(const CodecConfig& config) {
    try {
        switch (static_cast<CoderType::Type>(config.GetCoderType())) {
            case CoderType::Decoder:
                return TestDecoder(config);
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

}  // namespace

/// The test of one codec with its lines and its entry in the results of the pass. The mutex and the
/// results belong to the pass, which outlives its tasks.
struct CodecChecker::CheckTask {
    CodecConfig config;
    std::mutex& mutex;
    ResultsByImplementation& results;

    void operator()() const {
        LogTagged(TEST_CODEC_TAG, config.GetID());
        const std::string error = TestCodec(config);
        if (!error.empty()) {
            LogTagged(ERROR_TAG, error);
            LogTagged(CODECS_TAG, config.GetID());
        }
        const std::lock_guard lock(mutex);
        results[config.GetImplementation()].push_back({config.GetCodecId(), error});
    }
};

CodecChecker::CodecChecker(bool isMultithreading)
    : useMultithreading(isMultithreading), threadPool(std::thread::hardware_concurrency()) {}

CodecChecker::~CodecChecker() {
    threadPool.Stop();
}

void CodecChecker::SetVerifiableCodecImpls(const std::vector<std::string>& implementations) {
    verifiableCodecImpls = implementations;
}

void CodecChecker::SetVerifiableCodecs(const std::vector<std::string>& codecIds) {
    verifiableCodecs = codecIds;
}

void CodecChecker::SetKnownBrokenCodecs(const CodecLists& codecs) {
    knownBrokenCodecs = codecs;
}

void CodecChecker::SetLastFailedCodecsTest(const std::string& ids) {
    std::istringstream stream(ids);
    for (std::string piece; std::getline(stream, piece, ',');) {
        lastFailedCodecsTest.emplace_back(TrimAll(piece));
    }
}

CodecLists CodecChecker::Check() {
    errorInfo.clear();
    CodecLists broken;
    for (const CoderType type : ChoosePasses()) {
        const CodecLists found = CollectBrokenCodecs(type, CheckRunner(type));
        broken.insert(found.begin(), found.end());
    }
    LogTagged(TESTED_CODECS_TAG, "true");
    return broken;
}

CodecLists CodecChecker::GetAllCodecsByOption() const {
    CodecLists all = GetVerifiableCodecs(CoderType::Decoder, CodecListKey::ByBlackListOption);
    all.merge(GetVerifiableCodecs(CoderType::Encoder, CodecListKey::ByBlackListOption));
    return all;
}

std::vector<CoderType> CodecChecker::ChoosePasses() const {
    const bool onlyEncodersFailed =
        !lastFailedCodecsTest.empty() &&
        std::all_of(
            lastFailedCodecsTest.begin(), lastFailedCodecsTest.end(),
            [](const CodecConfig& config) { return config.GetCoderType() == CoderType::Encoder; });
    if (onlyEncodersFailed) {
        return {CoderType::Encoder};
    }
    return {CoderType::Decoder, CoderType::Encoder};
}

CodecLists CodecChecker::GetVerifiableCodecs(CoderType type, CodecListKey keyKind) const {
    const auto factory = GetCodecFactory();
    CodecLists lists;
    for (const std::string& implementation : verifiableCodecImpls) {
        std::vector<std::string> ids;
        if (type == CoderType::Decoder) {
            ids = factory->GetDecoderCodecs(implementation);
        } else if (type == CoderType::Encoder) {
            ids = factory->GetEncoderCodecs(implementation);
        } else {
            return {};
        }
        std::erase_if(ids, [&](const std::string& id) { return !Contains(verifiableCodecs, id); });
        if (!ids.empty()) {
            lists.emplace(keyKind == CodecListKey::ByImplementation
                              ? implementation
                              : BlackListCodecOption(type, implementation),
                          std::move(ids));
        }
    }
    return lists;
}

CodecLists CodecChecker::GetCodecsToCheck(CoderType type) const {
    CodecLists lists = GetVerifiableCodecs(type, CodecListKey::ByImplementation);
    for (const CodecConfig& failed : lastFailedCodecsTest) {
        if (failed.IsEmpty() || failed.GetCoderType() != type) {
            continue;
        }
        const auto list = lists.find(failed.GetImplementation());
        if (list != lists.end()) {
            std::erase(list->second, failed.GetCodecId());
        }
    }
    return lists;
}

bool CodecChecker::IsKnownBroken(const CodecConfig& config) const {
    const auto list = knownBrokenCodecs.find(
        BlackListCodecOption(config.GetCoderType(), config.GetImplementation()));
    return list != knownBrokenCodecs.end() && Contains(list->second, config.GetCodecId());
}

CodecChecker::ResultsByImplementation CodecChecker::CheckRunner(CoderType type) {
    ResultsByImplementation results;
    std::mutex mutex;
    const auto reportKnownBroken = [&](const CodecConfig& config) {
        const std::string message = config.GetID() + ": \nTest Error\n";
        LogTagged(ERROR_TAG, message);
        LogTagged(CODECS_TAG, config.GetID());
        const std::lock_guard lock(mutex);  // Tests of this pass may be running already.
        results[config.GetImplementation()].push_back({config.GetCodecId(), message});
    };
    const auto check = [&](const CodecConfig& config) {
        const CheckTask task{config, mutex, results};
        if (IsKnownBroken(config)) {
            reportKnownBroken(config);
        } else if (useMultithreading) {
            threadPool.AddTask(task);
        } else {
            task();
        }
    };
    try {
        for (const auto& [implementation, codecIds] : GetCodecsToCheck(type)) {
            for (const std::string& codecId : codecIds) {
                check(CodecConfig(type, implementation, codecId));
            }
        }
    } catch (...) {
        threadPool.Stop();  // No task may outlive what it refers to.
        throw;
    }
    if (useMultithreading) {
        threadPool.Stop();
    }
    return results;
}

CodecLists CodecChecker::CollectBrokenCodecs(CoderType type,
                                             const ResultsByImplementation& results) {
    CodecLists broken;
    for (const auto& [implementation, outcomes] : results) {
        std::vector<std::string> ids;
        for (const ResultOfCheck& outcome : outcomes) {
            if (!outcome.error.empty()) {
                errorInfo += implementation + "-" + outcome.codecId + ": \n" + outcome.error + "\n";
                ids.push_back(outcome.codecId);
            }
        }
        if (!ids.empty()) {
            broken[BlackListCodecOption(type, implementation)] = ids;
        }
    }
    return broken;
}

}  // namespace Tarnex::Core::Utils
