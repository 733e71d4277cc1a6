#pragma once

#include <cstddef>
#include <cstdint>

#include "core/media/Formats.h"
#include "core/media/Streams.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// libav and the core use the same numbers for colours.
Proc::ColorSpace ToColorSpace(AVColorPrimaries primaries, AVColorTransferCharacteristic transfer,
                              AVColorSpace matrix);

/// The core's format for libav's parameters.
Proc::Pointer<Proc::IFormatCodec> MakeFormat(const AVCodecParameters& parameters,
                                             AVRational frameRate);

/// All that libav knows of one of our own streams; what the format says of any other stream.
[[nodiscard]] Handle<AVCodecParameters> GetParameters(const Proc::ICodedStream& stream);
AVRational GetTimeBase(const Proc::ICodedStream& stream);
/// 0/1 if the stream isn't video or its format has no frame rate.
AVRational GetFrameRate(const Proc::ICodedStream& stream);

/// Copies the bytes.
void SetExtraData(AVCodecParameters& parameters, const std::uint8_t* data, std::size_t size);

/// Converts to units of `timeBase`. Shares the data of one of our own packets; copies any other.
[[nodiscard]] Handle<AVPacket> ToAvPacket(const Proc::IPacket& packet, AVRational timeBase);

/// Describes the colours of an encoder's input. Its pixel format has to be set before.
void SetColors(AVCodecContext& encoder, const Proc::ColorSpace& space);

}  // namespace Tarnex::Libav
