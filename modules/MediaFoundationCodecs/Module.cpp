#include "core/module/Module.h"

#include "core/media/CodecFactory.h"
#include "core/media/Presets.h"
#include "core/support/Exception.h"
#include "modules/MediaFoundationCodecs/Decoder.h"
#include "modules/MediaFoundationCodecs/Encoder.h"
#include "modules/MediaFoundationCodecs/Framework.h"

namespace Tarnex::MediaFoundation {

namespace {

using Core::CoderType;
using Modules::IsSingleThreaded;
using Modules::ReadEncoderOptions;
using Modules::RequireStream;
using Proc::MediaKind;

/// Offers the whole table if the framework doesn't start: each test then fails with the framework's
/// reason, and the codecs of other implementations are tested as usual.
bool IsOffered(const Codec& codec, CoderType type) {
    const bool isStarted = StartFramework().empty();
    if (type == CoderType::Decoder) {
        return !isStarted || HasDecoder(codec.caps);
    }
    return type == CoderType::Encoder && codec.encoder != nullptr &&
           (!isStarted || HasElement(codec.encoder));
}

/// Returns the codec, or throws if no coder for it can be created.
const Codec& Offered(const std::string& codecId, MediaKind kind, CoderType type) {
    if (!StartFramework().empty()) {
        throw Exception(StartFramework());
    }
    const Codec* const codec = FindCodec(codecId);
    if (codec == nullptr || codec->kind != kind || !IsOffered(*codec, type)) {
        throw Exception("The system's media framework offers no " +
                        std::string(kind == MediaKind::Video ? "video " : "audio ") +
                        ToString(type) + " for \"" + codecId + '"');
    }
    return *codec;
}

const Codec& OfferedDecoder(const Proc::ICodedStream& input, MediaKind kind) {
    return Offered(input.GetCodecFormat()->GetCodecID(), kind, CoderType::Decoder);
}

const Codec& OfferedEncoder(const Proc::Property& property, MediaKind kind) {
    return Offered(property.Get(Conf::IPreset::ITEM_CODEC_ID), kind, CoderType::Encoder);
}

class Codecs : public Module::ICodecModule {
public:
    std::string GetImplementation() const override { return Proc::ImplNames::MEDIA_FOUNDATION; }

    MediaKind GetMediaKind(const std::string& codecId) override {
        const Codec* const codec = FindCodec(codecId);
        return codec == nullptr ? MediaKind::None : codec->kind;
    }

    std::vector<std::string> GetCodecs(CoderType type) override {
        std::vector<std::string> ids;
        for (const Codec& codec : AllCodecs()) {
            if (IsOffered(codec, type)) {
                ids.emplace_back(codec.id);
            }
        }
        return ids;
    }

    Proc::Pointer<Proc::IStreamVideo> CreateVideoDecoder(
        const Proc::Pointer<Proc::ICodedStream>& input) override {
        return NewVideoDecoder(OfferedDecoder(*input, MediaKind::Video), input, IsSingleThreaded());
    }
    Proc::Pointer<Proc::IStreamAudio> CreateAudioDecoder(
        const Proc::Pointer<Proc::ICodedStream>& input) override {
        return NewAudioDecoder(OfferedDecoder(*input, MediaKind::Audio), input, IsSingleThreaded());
    }
    Proc::Pointer<Proc::ICodedStream> CreateVideoEncoder(
        const Proc::Pointer<Proc::IStreamVideo>& stream, const Proc::Property& property) override {
        return NewVideoEncoder(OfferedEncoder(property, MediaKind::Video), RequireStream(stream),
                               ReadEncoderOptions(property));
    }
    Proc::Pointer<Proc::ICodedStream> CreateAudioEncoder(
        const Proc::Pointer<Proc::IStreamAudio>& stream, const Proc::Property& property) override {
        return NewAudioEncoder(OfferedEncoder(property, MediaKind::Audio), RequireStream(stream),
                               ReadEncoderOptions(property));
    }
};

}  // namespace

}  // namespace Tarnex::MediaFoundation

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION;
}

// Doesn't start the framework: that would cost time even if none of its codecs is tested.
TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Tarnex::Module::Description& description) {
    static auto* const codecs = new Tarnex::MediaFoundation::Codecs;
    description.codecs = codecs;
    return true;
}
