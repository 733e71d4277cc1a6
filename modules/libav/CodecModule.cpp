#include "modules/libav/CodecModule.h"

#include "core/media/Presets.h"
#include "core/support/Exception.h"
#include "modules/libav/Decoder.h"
#include "modules/libav/Encoder.h"

namespace Tarnex::Libav {
namespace {

using Core::CoderType;
using Modules::IsSingleThreaded;
using Modules::ReadEncoderOptions;
using Modules::RequireStream;
using Proc::Pointer;

}  // namespace

CodecModule::CodecModule(std::string implementation, bool (*offers)(const AVCodec&))
    : implementation(std::move(implementation)), table(offers) {
    av_get_cpu_flags();  // fills a cache; the coders' threads would race to fill it
}

Proc::MediaKind CodecModule::GetMediaKind(const std::string& codecId) {
    return table.GetMediaKind(codecId);
}

std::vector<std::string> CodecModule::GetCodecs(CoderType type) {
    return table.GetCodecs(type);
}

Pointer<Proc::IStreamVideo> CodecModule::CreateVideoDecoder(
    const Pointer<Proc::ICodedStream>& input) {
    const std::string codecId = input->GetCodecFormat()->GetCodecID();
    return MakeVideoDecoder(Require(CoderType::Decoder, AVMEDIA_TYPE_VIDEO, codecId), input,
                            IsSingleThreaded());
}

Pointer<Proc::IStreamAudio> CodecModule::CreateAudioDecoder(
    const Pointer<Proc::ICodedStream>& input) {
    const std::string codecId = input->GetCodecFormat()->GetCodecID();
    return MakeAudioDecoder(Require(CoderType::Decoder, AVMEDIA_TYPE_AUDIO, codecId), input,
                            IsSingleThreaded());
}

Pointer<Proc::ICodedStream> CodecModule::CreateVideoEncoder(
    const Pointer<Proc::IStreamVideo>& stream, const Proc::Property& property) {
    const std::string codecId = property.Get(Conf::IPreset::ITEM_CODEC_ID);
    return new Encoder(Require(CoderType::Encoder, AVMEDIA_TYPE_VIDEO, codecId),
                       RequireStream(stream), ReadEncoderOptions(property));
}

Pointer<Proc::ICodedStream> CodecModule::CreateAudioEncoder(
    const Pointer<Proc::IStreamAudio>& stream, const Proc::Property& property) {
    const std::string codecId = property.Get(Conf::IPreset::ITEM_CODEC_ID);
    return new Encoder(Require(CoderType::Encoder, AVMEDIA_TYPE_AUDIO, codecId),
                       RequireStream(stream), ReadEncoderOptions(property));
}

const AVCodec& CodecModule::Require(CoderType type, AVMediaType kind,
                                    const std::string& codecId) const {
    const AVCodec* codec = table.Find(type, codecId);
    if (codec == nullptr || codec->type != kind) {
        throw Exception(implementation + " has no " + av_get_media_type_string(kind) + " " +
                        (type == CoderType::Encoder ? "encoder" : "decoder") + " for \"" + codecId +
                        "\"");
    }
    return *codec;
}

}  // namespace Tarnex::Libav
