#pragma once

#include <span>
#include <string>
#include <string_view>

#include "core/media/MediaTypes.h"

namespace Tarnex::MediaFoundation {

/// How a codec's extradata reaches the framework.
enum class Headers {
    None,           ///< not at all: the packets hold all that a decoder needs
    Config,         ///< AAC: as the caps' codec_data; without extradata the packets are ADTS
    ParameterSets,  ///< H.264, H.265: codec_data if it is a configuration record, else a buffer
    Xiph,           ///< Vorbis, Theora: as three header packets before the first packet
    StreamInfo,     ///< FLAC: in a buffer before the first packet, after the stream marker
};

struct Codec {
    const char* id;
    Proc::MediaKind kind;
    /// Caps of the coded stream as a decoder's input, if there is no extradata.
    const char* caps;
    Headers headers = Headers::None;
    /// The stream format whose extradata becomes the caps' codec_data. Null if there is none.
    const char* configuredFormat = nullptr;
    /// Bytes after the last packet. Without them a parser would wait for the next picture.
    std::string_view tail = {};
    /// The encoder's element. Null if the framework has none that is fit for use.
    const char* encoder = nullptr;
    /// The encoder's properties: those always set, and those that trade quality for speed.
    const char* settings = "";
    const char* fastest = "";
};

std::span<const Codec> AllCodecs();

/// Null if the table doesn't have the id.
const Codec* FindCodec(const std::string& codecId);

}  // namespace Tarnex::MediaFoundation
