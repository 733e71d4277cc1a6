#pragma once

#include "core/media/Streams.h"
#include "modules/MediaFoundationCodecs/CodecTable.h"

namespace Tarnex::MediaFoundation {

/// How an encoder is to work.
struct EncoderOptions {
    bool isFastest = false;
    bool isSingleThreaded = false;
};

// Encoders on the element that the table names. The format of their packets is complete once the
// first packet was read.
Proc::Pointer<Proc::ICodedStream> NewVideoEncoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::IStreamVideo>& stream,
                                                  EncoderOptions options);
Proc::Pointer<Proc::ICodedStream> NewAudioEncoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::IStreamAudio>& stream,
                                                  EncoderOptions options);

}  // namespace Tarnex::MediaFoundation
