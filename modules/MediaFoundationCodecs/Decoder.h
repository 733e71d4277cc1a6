#pragma once

#include "core/media/Streams.h"
#include "modules/MediaFoundationCodecs/CodecTable.h"

namespace Tarnex::MediaFoundation {

// Decoders that let the framework choose its elements by the stream that comes in. Both throw
// `Tarnex::Exception` if the input's format is of the other media kind.
Proc::Pointer<Proc::IStreamVideo> NewVideoDecoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::ICodedStream>& input,
                                                  bool isSingleThreaded);
Proc::Pointer<Proc::IStreamAudio> NewAudioDecoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::ICodedStream>& input,
                                                  bool isSingleThreaded);

}  // namespace Tarnex::MediaFoundation
