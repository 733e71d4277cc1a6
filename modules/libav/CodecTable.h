#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/media/CoderType.h"
#include "core/media/MediaTypes.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// "CODEC_ID_" and the upper-case name of libavcodec's descriptor; `CODEC_ID_H265` for "hevc".
/// Empty if libavcodec has no descriptor for the id.
std::string ToCodecId(AVCodecID id);

/// `AV_CODEC_ID_NONE` for an unknown codec id.
AVCodecID FromCodecId(const std::string& codecId);

/// Video, audio or none.
Proc::MediaKind ToMediaKind(AVMediaType type);

/// The coders of one implementation: at most one decoder and one encoder for each codec id, namely
/// the first in libavcodec's order that isn't experimental. Thread-safe after construction.
class CodecTable {
public:
    explicit CodecTable(bool (*offers)(const AVCodec&));

    /// The codec ids, in libavcodec's order.
    const std::vector<std::string>& GetCodecs(Core::CoderType type) const;
    Proc::MediaKind GetMediaKind(const std::string& codecId) const;
    /// Null if there is none.
    const AVCodec* Find(Core::CoderType type, const std::string& codecId) const;

private:
    struct Coders {
        std::map<std::string, const AVCodec*> byId;
        std::vector<std::string> ids;
        void Add(const AVCodec& coder);
    };

    Coders decoders;
    Coders encoders;
};

}  // namespace Tarnex::Libav
