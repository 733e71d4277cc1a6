#pragma once

#include <cstdint>
#include <span>

#include "core/media/Frames.h"
#include "modules/MediaFoundationCodecs/GstPointers.h"

namespace Tarnex::MediaFoundation {

/// A buffer and the caps that describe it.
struct Input {
    GstOwner<GstBuffer> buffer;
    GstOwner<GstCaps> caps;
};

// Copy data for the framework. Throw `Tarnex::Exception` for a frame of impossible size or rate.
GstOwner<GstBuffer> BufferOf(std::span<const std::uint8_t> bytes);
GstOwner<GstBuffer> BufferOf(const Proc::IPacket& packet);
Input InputOf(const Proc::IFrameVideo& frame, const Proc::FrameRate& rate);
Input InputOf(const Proc::IFrameAudio& frame);

}  // namespace Tarnex::MediaFoundation
