#include "modules/libav/CodecTable.h"

#include <algorithm>
#include <cctype>

#include "core/media/Formats.h"

namespace Tarnex::Libav {

std::string ToCodecId(AVCodecID id) {
    if (id == AV_CODEC_ID_HEVC) {
        return Proc::IFormatCodecVideo::CODEC_ID_H265;
    }
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(id);
    if (descriptor == nullptr) {
        return {};
    }
    std::string name = descriptor->name;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return "CODEC_ID_" + name;
}

AVCodecID FromCodecId(const std::string& codecId) {
    const AVCodecDescriptor* descriptor = nullptr;
    while ((descriptor = avcodec_descriptor_next(descriptor)) != nullptr) {
        if (ToCodecId(descriptor->id) == codecId) {
            return descriptor->id;
        }
    }
    return AV_CODEC_ID_NONE;
}

Proc::MediaKind ToMediaKind(AVMediaType type) {
    switch (type) {
        case AVMEDIA_TYPE_VIDEO:
            return Proc::MediaKind::Video;
        case AVMEDIA_TYPE_AUDIO:
            return Proc::MediaKind::Audio;
        default:
            return Proc::MediaKind::None;
    }
}

CodecTable::CodecTable(bool (*offers)(const AVCodec&)) {
    void* place = nullptr;
    while (const AVCodec* coder = av_codec_iterate(&place)) {
        if (ToMediaKind(coder->type) != Proc::MediaKind::None && offers(*coder)) {
            (av_codec_is_encoder(coder) != 0 ? encoders : decoders).Add(*coder);
        }
    }
}

void CodecTable::Coders::Add(const AVCodec& coder) {
    const std::string id = ToCodecId(coder.id);
    const auto [entry, isNew] = byId.try_emplace(id, &coder);
    if (isNew) {
        ids.push_back(id);
    } else if ((entry->second->capabilities & ~coder.capabilities & AV_CODEC_CAP_EXPERIMENTAL) !=
               0) {
        entry->second = &coder;
    }
}

const std::vector<std::string>& CodecTable::GetCodecs(Core::CoderType type) const {
    static const std::vector<std::string>& NONE = *new std::vector<std::string>();
    if (type == Core::CoderType::None) {
        return NONE;
    }
    return type == Core::CoderType::Encoder ? encoders.ids : decoders.ids;
}

Proc::MediaKind CodecTable::GetMediaKind(const std::string& codecId) const {
    const AVCodec* coder = Find(Core::CoderType::Decoder, codecId);
    if (coder == nullptr) {
        coder = Find(Core::CoderType::Encoder, codecId);
    }
    return coder == nullptr ? Proc::MediaKind::None : ToMediaKind(coder->type);
}

const AVCodec* CodecTable::Find(Core::CoderType type, const std::string& codecId) const {
    const auto& byId = type == Core::CoderType::Encoder ? encoders.byId : decoders.byId;
    const auto found = byId.find(codecId);
    return found == byId.end() ? nullptr : found->second;
}

}  // namespace Tarnex::Libav
