#pragma once

#include <span>
#include <string>
#include <string_view>

#include "core/media/MediaTypes.h"

namespace Tarnex::MediaFoundation {

/// What lies between a codec's extradata and the framework, and in which form it gets there.
enum class Headers {
    None,           ///< the packets hold all that a decoder needs
    Config,         ///< AAC: extradata is the caps' codec_data; without any the packets are ADTS
    ParameterSets,  ///< H.264, H.265: a length-prefixed stream's configuration, or ahead as bytes
    Xiph,           ///< Vorbis, Theora: three header packets, ahead of the first packet
    StreamInfo,     ///< FLAC: the block that follows the stream marker, ahead as bytes
};

struct Codec {
    const char* id;
    Proc::MediaKind kind;
    /// Of the coded stream, as a decoder's input without extradata.
    const char* caps;
    Headers headers = Headers::None;
    /// The stream format for which extradata becomes the caps' codec_data; null: it never does.
    const char* configuredFormat = nullptr;
    /// Bytes behind the last packet, without which a parser would wait for the next picture.
    std::string_view tail = {};
    /// The element that encodes; null: the framework has none that is fit for use.
    const char* encoder = nullptr;
    /// What the encoder is always set to, and what makes it fast at the price of the result.
    const char* settings = "";
    const char* fastest = "";
};

std::span<const Codec> AllCodecs();

/// Null for an id that isn't in the table.
const Codec* FindCodec(const std::string& codecId);

}  // namespace Tarnex::MediaFoundation
