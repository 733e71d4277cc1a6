#pragma once

#include <string>
#include <string_view>

#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// What one encoder of libavcodec wants otherwise than most. 0, NONE, "" and null: nothing special.
struct EncoderTraits {
    /// libavcodec's name of the encoder.
    std::string_view name;
    /// Options without which it fails or talks past the log, "key=value key=value".
    const char* options = "";
    /// Options on top of these for its fastest usable setting.
    const char* fastest = "";
    int width = 0;
    int height = 0;
    AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;
    int sampleRate = 0;
    int channels = 0;
    /// What stands before each packet where a container has it and the encoder doesn't write it.
    std::string (*packetPrefix)(const AVCodecParameters& parameters) = nullptr;
    int packetFlags = 0;
    /// Fills in what a decoder needs and a container would hold.
    void (*complete)(AVCodecParameters& parameters) = nullptr;
};

const EncoderTraits& GetTraits(const AVCodec& encoder);

}  // namespace Tarnex::Libav
