#pragma once

#include <string>
#include <vector>

#include "core/media/CoreManager.h"
#include "core/media/Presets.h"
#include "core/support/Exception.h"
#include "streams/FakeStreamAudio.h"
#include "streams/FakeStreamVideo.h"

/// Creates coders of the started core on the program's synthetic streams.
namespace Tarnex::Tests {

using Proc::Pointer;

inline Pointer<Proc::ICodecFactory> Factory() {
    return Core::CoreManager::Instance().GetCodecFactory();
}

/// An encoder of `codecId` that reads `source`, with the fastest settings.
inline Pointer<Proc::ICodedStream> Encode(const std::string& codecId,
                                          const Pointer<Proc::IStream>& source,
                                          const std::string& implementation) {
    const auto preset = [&](const char* key) {
        return Conf::CreateDataHelper(key, codecId)->GetPresetProperty();
    };
    if (const auto video = boost::dynamic_pointer_cast<Proc::IStreamVideo>(source)) {
        return Factory()->CreateVideoEncoder(video, preset(Conf::IPreset::KEY_FILTER_VIDEO_CODEC),
                                             implementation, {});
    }
    return Factory()->CreateAudioEncoder(boost::dynamic_pointer_cast<Proc::IStreamAudio>(source),
                                         preset(Conf::IPreset::KEY_FILTER_AUDIO_CODEC),
                                         implementation, {});
}

inline Pointer<Proc::ICodedStream> Encode(
    const std::string& codecId, const std::string& implementation = Proc::ImplNames::FFMPEG) {
    if (Proc::IsVideoCodec(codecId)) {
        return Encode(codecId, new Core::Utils::FakeStreamVideo(implementation, codecId),
                      implementation);
    }
    return Encode(codecId, new Core::Utils::FakeStreamAudio(), implementation);
}

inline Pointer<Proc::IStream> Decode(const Pointer<Proc::ICodedStream>& input,
                                     const std::string& implementation = Proc::ImplNames::FFMPEG) {
    if (Proc::IsVideoCodec(input->GetCodecFormat()->GetCodecID())) {
        return Factory()->CreateVideoDecoder(input, implementation);
    }
    return Factory()->CreateAudioDecoder(input, implementation);
}

/// A packet that no module created.
class ForeignPacket : public Proc::RefCounted<Proc::IPacket> {
public:
    explicit ForeignPacket(std::vector<std::uint8_t> data) : data(std::move(data)) {}
    const std::uint8_t* GetData() const override { return data.data(); }
    std::size_t GetSize() const override { return data.size(); }
    std::int64_t GetTime() const override { return 0; }
    bool IsKey() const override { return true; }

private:
    std::vector<std::uint8_t> data;
};

/// The text of what the action throws; empty if it doesn't throw.
template <class Action>
std::string ThrownBy(Action action) {
    try {
        action();
        return {};
    } catch (const Exception& failure) {
        return failure.what();
    }
}

}  // namespace Tarnex::Tests
