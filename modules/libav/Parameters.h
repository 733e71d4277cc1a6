#pragma once

#include <cstddef>
#include <cstdint>

#include "core/media/Formats.h"
#include "core/media/Streams.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// Both sides number colours by the same standard.
Proc::ColorSpace ToColorSpace(AVColorPrimaries primaries, AVColorTransferCharacteristic transfer,
                              AVColorSpace matrix);

/// The common format that says the same.
Proc::Pointer<Proc::IFormatCodec> MakeFormat(const AVCodecParameters& parameters,
                                             AVRational frameRate);

/// What is known of any coded stream: all for one of ours, what its format says for another.
[[nodiscard]] Handle<AVCodecParameters> GetParameters(const Proc::ICodedStream& stream);
AVRational GetTimeBase(const Proc::ICodedStream& stream);
/// 0/1 where it isn't video or the format doesn't say.
AVRational GetFrameRate(const Proc::ICodedStream& stream);

/// Copies the bytes.
void SetExtraData(AVCodecParameters& parameters, const std::uint8_t* data, std::size_t size);

/// The packet, shared where it is one of ours and copied where it isn't, in units of `timeBase`.
[[nodiscard]] Handle<AVPacket> ToAvPacket(const Proc::IPacket& packet, AVRational timeBase);

}  // namespace Tarnex::Libav
