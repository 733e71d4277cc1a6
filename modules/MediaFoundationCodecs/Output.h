#pragma once

#include "core/media/Frames.h"
#include "modules/MediaFoundationCodecs/GstPointers.h"

namespace Tarnex::MediaFoundation {

// Wrap what the framework returned, without a copy. Throw `Tarnex::Exception` if its memory can't
// be read.
Proc::Pointer<Proc::IPacket> PacketOf(GstOwner<GstSample> sample);
Proc::Pointer<Proc::IFrameVideo> VideoFrameOf(GstOwner<GstSample> sample);
Proc::Pointer<Proc::IFrameAudio> AudioFrameOf(GstOwner<GstSample> sample);

}  // namespace Tarnex::MediaFoundation
