#pragma once

#include <string>

#include "core/media/CodecFactory.h"
#include "core/media/CoreManager.h"
#include "core/media/Presets.h"
#include "streams/FakeStreamAudio.h"
#include "streams/FakeStreamVideo.h"

namespace Tarnex::Tests {

inline constexpr const char* IMPLEMENTATION = Proc::ImplNames::MEDIA_FOUNDATION;

/// The codec factory of the core, which is started the first time.
inline Proc::Pointer<Proc::ICodecFactory> Factory() {
    auto& core = Core::CoreManager::Instance();
    if (!core.IsInitialized()) {
        core.Initialize({}, {}, nullptr, nullptr, true);
        core.WaitUntilInitialized();
    }
    return core.GetCodecFactory();
}

/// One synthetic frame, small where the codec takes a small one.
inline Proc::Pointer<Proc::IStreamVideo> MakePicture(const std::string& codecId) {
    const bool isFixed = codecId == Proc::IFormatCodecVideo::CODEC_ID_DVVIDEO;
    return new Core::Utils::FakeStreamVideo(
        IMPLEMENTATION, isFixed ? codecId : Proc::IFormatCodecVideo::CODEC_ID_H263);
}

/// An encoder over one synthetic frame; an empty `implementation` takes the default one.
inline Proc::Pointer<Proc::ICodedStream> MakeEncoder(const std::string& codecId,
                                                     const std::string& implementation) {
    const auto factory = Factory();
    const bool isVideo = Proc::IsVideoCodec(codecId);
    const Proc::Property preset =
        Conf::CreateDataHelper(
            isVideo ? Conf::IPreset::KEY_FILTER_VIDEO_CODEC : Conf::IPreset::KEY_FILTER_AUDIO_CODEC,
            codecId)
            ->GetPresetProperty();
    if (isVideo) {
        const Proc::Pointer<Proc::IStreamVideo> stream = MakePicture(codecId);
        return implementation.empty()
                   ? factory->CreateDefaultVideoEncoder(stream, preset)
                   : factory->CreateVideoEncoder(stream, preset, implementation, nullptr);
    }
    const Proc::Pointer<Proc::IStreamAudio> stream = new Core::Utils::FakeStreamAudio();
    return implementation.empty()
               ? factory->CreateDefaultAudioEncoder(stream, preset)
               : factory->CreateAudioEncoder(stream, preset, implementation, nullptr);
}

inline Proc::Pointer<Proc::IStream> MakeDecoder(const Proc::Pointer<Proc::ICodedStream>& input) {
    const auto factory = Factory();
    if (input->GetMediaKind() == Proc::MediaKind::Video) {
        return factory->CreateVideoDecoder(input, IMPLEMENTATION);
    }
    return factory->CreateAudioDecoder(input, IMPLEMENTATION);
}

}  // namespace Tarnex::Tests
