#pragma once

#include "core/module/Module.h"
#include "modules/libav/CodecTable.h"

namespace Tarnex::Libav {

/// Offers libavcodec's coders as a codec module.
class TARNEX_TYPE CodecModule : public Module::ICodecModule {
public:
    /// `offers` returns true for the coders that belong to the implementation.
    CodecModule(std::string implementation, bool (*offers)(const AVCodec&));

    std::string GetImplementation() const override { return implementation; }
    Proc::MediaKind GetMediaKind(const std::string& codecId) override;
    std::vector<std::string> GetCodecs(Core::CoderType type) override;
    Proc::Pointer<Proc::IStreamVideo> CreateVideoDecoder(
        const Proc::Pointer<Proc::ICodedStream>& input) override;
    Proc::Pointer<Proc::IStreamAudio> CreateAudioDecoder(
        const Proc::Pointer<Proc::ICodedStream>& input) override;
    Proc::Pointer<Proc::ICodedStream> CreateVideoEncoder(
        const Proc::Pointer<Proc::IStreamVideo>& stream, const Proc::Property& property) override;
    Proc::Pointer<Proc::ICodedStream> CreateAudioEncoder(
        const Proc::Pointer<Proc::IStreamAudio>& stream, const Proc::Property& property) override;

private:
    const AVCodec& Require(Core::CoderType type, AVMediaType kind,
                           const std::string& codecId) const;

    std::string implementation;
    CodecTable table;
};

}  // namespace Tarnex::Libav
