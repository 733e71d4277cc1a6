#pragma once

#include "core/media/Streams.h"
#include "modules/MediaFoundationCodecs/CodecTable.h"
#include "modules/common/EncoderOptions.h"

namespace Tarnex::MediaFoundation {

// Create encoders from the element that the table names. The format of an encoder is complete once
// its first packet was read. Both throw `Tarnex::Exception` for a stream that no encoder can take.
Proc::Pointer<Proc::ICodedStream> NewVideoEncoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::IStreamVideo>& stream,
                                                  Modules::EncoderOptions options);
Proc::Pointer<Proc::ICodedStream> NewAudioEncoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::IStreamAudio>& stream,
                                                  Modules::EncoderOptions options);

}  // namespace Tarnex::MediaFoundation
