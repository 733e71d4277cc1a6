#pragma once

#include <vector>

#include "core/media/Formats.h"
#include "modules/MediaFoundationCodecs/CodecTable.h"
#include "modules/MediaFoundationCodecs/GstPointers.h"
#include "modules/MediaFoundationCodecs/XiphHeaders.h"

namespace Tarnex::MediaFoundation {

/// How a decoder's input begins.
struct StreamStart {
    GstOwner<GstCaps> caps;
    std::vector<Bytes> headers;  ///< buffers that go ahead of the first packet
};

/// From a coded stream's format to the framework. Throws `Tarnex::Exception` if the extradata is
/// malformed or the format is of the other kind than the codec.
StreamStart StartOf(const Codec& codec, const Proc::IFormatCodec& format);

/// From an encoder's output caps to a coded stream's extradata, in the form that `StartOf` takes;
/// empty where the packets hold all.
Bytes ExtraDataOf(const Codec& codec, const GstCaps* caps);

}  // namespace Tarnex::MediaFoundation
