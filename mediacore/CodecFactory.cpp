#include "core/media/CodecFactory.h"

#include <exception>
#include <utility>

#include "core/media/Presets.h"
#include "core/support/CodecConfig.h"
#include "core/support/ExceptionText.h"
#include "core/support/Text.h"
#include "mediacore/SharedLibrary.h"
#include "mediacore/StartedModules.h"
#include "platform/TerminalText.h"

namespace Tarnex::Proc {
namespace {

using Codecs = std::vector<std::string>;
using Core::CoderType;
using Core::StartedModules;
using Core::Utils::Contains;
using Module::ICodecModule;
using StartedCodecs = Core::Started<ICodecModule>;

/// Names the module, because no record does at this point.
[[noreturn]] void RefuseList(const StartedCodecs& started, const std::string& reason) {
    Core::SharedLibrary::FindFile(started.plugin)
        .Refuse("can't list the codecs of " + started.module->GetImplementation() + ": " + reason);
}

Codecs Ask(const StartedCodecs& started, CoderType type) {
    try {
        return started.module->GetCodecs(type);
    } catch (...) {
        RefuseList(started, Core::Utils::GetCurrentExceptionText());
    }
}

/// What a module offers. Throws if a test can't be named by one of the ids.
Codecs AskForUsable(const StartedCodecs& started, CoderType type) {
    Codecs codecIds = Ask(started, type);
    for (const std::string& codecId : codecIds) {
        if (!Core::Utils::IsCodecId(codecId)) {
            RefuseList(started, "unusable codec id \"" + Platform::MakePrintable(codecId) + '"');
        }
    }
    return codecIds;
}

/// Finds the module for a codec. The module creates the coder.
class CodecFactory : public RefCounted<ICodecFactory> {
public:
    explicit CodecFactory(std::shared_ptr<const StartedModules> modules)
        : modules(std::move(modules)) {}

    Pointer<IStreamVideo> CreateVideoDecoder(const Pointer<ICodedStream>& input,
                                             const std::string& implementation) override {
        ICodecModule* const module = FindDecoder(*input, implementation);
        return module ? module->CreateVideoDecoder(input) : nullptr;
    }

    Pointer<IStreamAudio> CreateAudioDecoder(const Pointer<ICodedStream>& input,
                                             const std::string& implementation) override {
        ICodecModule* const module = FindDecoder(*input, implementation);
        return module ? module->CreateAudioDecoder(input) : nullptr;
    }

    Pointer<ICodedStream> CreateVideoEncoder(const Pointer<IStreamVideo>& stream,
                                             const Property& property,
                                             const std::string& implementation,
                                             const Pointer<IRefCountable>& /*reserved*/) override {
        ICodecModule* const module = FindEncoder(property, implementation);
        return module ? module->CreateVideoEncoder(stream, property) : nullptr;
    }

    Pointer<ICodedStream> CreateDefaultVideoEncoder(const Pointer<IStreamVideo>& stream,
                                                    const Property& property) override {
        return CreateDefault(stream, property, &ICodecModule::CreateVideoEncoder);
    }

    Pointer<ICodedStream> CreateAudioEncoder(const Pointer<IStreamAudio>& stream,
                                             const Property& property,
                                             const std::string& implementation,
                                             const Pointer<IRefCountable>& /*reserved*/) override {
        ICodecModule* const module = FindEncoder(property, implementation);
        return module ? module->CreateAudioEncoder(stream, property) : nullptr;
    }

    Pointer<ICodedStream> CreateDefaultAudioEncoder(const Pointer<IStreamAudio>& stream,
                                                    const Property& property) override {
        return CreateDefault(stream, property, &ICodecModule::CreateAudioEncoder);
    }

    Codecs GetDecoderCodecs(const std::string& implementation) override {
        return GetCodecs(CoderType::Decoder, implementation);
    }

    Codecs GetEncoderCodecs(const std::string& implementation) override {
        return GetCodecs(CoderType::Encoder, implementation);
    }

private:
    ICodecModule* FindDecoder(const ICodedStream& input, const std::string& implementation) const {
        return Find(CoderType::Decoder, input.GetCodecFormat()->GetCodecID(), implementation);
    }

    ICodecModule* FindEncoder(const Property& property, const std::string& implementation) const {
        return Find(CoderType::Encoder, property.Get(Conf::IPreset::ITEM_CODEC_ID), implementation);
    }

    /// The first module of the implementation that offers the codec. Asks no further modules,
    /// because one may have to start a framework to answer.
    ICodecModule* Find(CoderType type, const std::string& codecId,
                       const std::string& implementation) const {
        for (const StartedCodecs& started : modules->codecs) {
            if (started.module->GetImplementation() == implementation &&
                Contains(Ask(started, type), codecId)) {
                return started.module;
            }
        }
        return nullptr;
    }

    /// Tries the modules in turn, because one may offer a codec but lack the device for it. If all
    /// fail, throws the failure of the first.
    template <class Stream>
    Pointer<ICodedStream> CreateDefault(const Pointer<Stream>& stream, const Property& property,
                                        Pointer<ICodedStream> (ICodecModule::*create)(
                                            const Pointer<Stream>&, const Property&)) const {
        const std::string codecId = property.Get(Conf::IPreset::ITEM_CODEC_ID);
        std::exception_ptr reason;
        for (const StartedCodecs& started : modules->codecs) {
            try {
                if (!Contains(Ask(started, CoderType::Encoder), codecId)) {
                    continue;
                }
                if (auto encoder = (started.module->*create)(stream, property)) {
                    return encoder;
                }
            } catch (...) {
                reason = reason ? reason : std::current_exception();
            }
        }
        if (reason) {
            std::rethrow_exception(reason);
        }
        return {};
    }

    Codecs GetCodecs(CoderType type, const std::string& implementation) const {
        Codecs all;
        for (const StartedCodecs& started : modules->codecs) {
            if (started.module->GetImplementation() != implementation) {
                continue;
            }
            for (std::string& codecId : AskForUsable(started, type)) {
                if (!Contains(all, codecId)) {
                    all.push_back(std::move(codecId));
                }
            }
        }
        return all;
    }

    std::shared_ptr<const StartedModules> modules;
};

MediaKind GetMediaKind(const std::string& codecId) {
    const auto modules = Core::GetStartedModules();
    for (const auto& [plugin, module] : modules->codecs) {
        const MediaKind kind = module->GetMediaKind(codecId);
        if (kind != MediaKind::None) {
            return kind;
        }
    }
    return MediaKind::None;
}

}  // namespace

bool IsVideoCodec(const std::string& codecId) {
    return GetMediaKind(codecId) == MediaKind::Video;
}

bool IsAudioCodec(const std::string& codecId) {
    return GetMediaKind(codecId) == MediaKind::Audio;
}

}  // namespace Tarnex::Proc

namespace Tarnex::Core {

Proc::Pointer<Proc::ICodecFactory> CreateCodecFactory(
    std::shared_ptr<const StartedModules> modules) {
    return new Proc::CodecFactory(std::move(modules));
}

}  // namespace Tarnex::Core
