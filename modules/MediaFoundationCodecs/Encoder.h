#pragma once

#include "core/media/Streams.h"
#include "modules/MediaFoundationCodecs/CodecTable.h"
#include "modules/common/EncoderOptions.h"

namespace Tarnex::MediaFoundation {

// Encoders on the element that the table names. The format of their packets is complete once the
// first packet was read. Both throw `Tarnex::Exception` for a stream that no encoder can take.
Proc::Pointer<Proc::ICodedStream> NewVideoEncoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::IStreamVideo>& stream,
                                                  Modules::EncoderOptions options);
Proc::Pointer<Proc::ICodedStream> NewAudioEncoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::IStreamAudio>& stream,
                                                  Modules::EncoderOptions options);

}  // namespace Tarnex::MediaFoundation
