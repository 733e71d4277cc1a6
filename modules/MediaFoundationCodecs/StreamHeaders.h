#pragma once

#include <vector>

#include "core/media/Formats.h"
#include "modules/MediaFoundationCodecs/CodecTable.h"
#include "modules/MediaFoundationCodecs/GstPointers.h"
#include "modules/MediaFoundationCodecs/XiphHeaders.h"

namespace Tarnex::MediaFoundation {

/// How the input of a decoder begins.
struct StreamStart {
    GstOwner<GstCaps> caps;
    std::vector<Bytes> headers;  ///< buffers to push before the first packet
};

/// Converts a coded stream's format for the framework. Throws `Tarnex::Exception` if the extradata
/// is malformed or the format's media kind differs from the codec's.
StreamStart StartOf(const Codec& codec, const Proc::IFormatCodec& format);

/// Converts an encoder's output caps to extradata in the form that `StartOf` takes. Empty if the
/// packets hold all that a decoder needs.
Bytes ExtraDataOf(const Codec& codec, const GstCaps* caps);

}  // namespace Tarnex::MediaFoundation
