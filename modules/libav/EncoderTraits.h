#pragma once

#include <string>
#include <string_view>

#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// What one of libavcodec's encoders needs beyond the usual. 0, NONE, "" and null: nothing special.
struct EncoderTraits {
    /// The encoder's name in libavcodec.
    std::string_view name;
    /// Options without which it fails or prints past the log, as "key=value key=value".
    const char* options = "";
    /// Further options, for its fastest usable setting.
    const char* fastest = "";
    int width = 0;
    int height = 0;
    AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;
    int sampleRate = 0;
    int channels = 0;
    /// Makes what a container stores before each packet and the encoder doesn't write.
    std::string (*packetPrefix)(const AVCodecParameters& parameters) = nullptr;
    int packetFlags = 0;
    /// Adds what a decoder needs and a container would store.
    void (*complete)(AVCodecParameters& parameters) = nullptr;
};

const EncoderTraits& GetTraits(const AVCodec& encoder);

}  // namespace Tarnex::Libav
