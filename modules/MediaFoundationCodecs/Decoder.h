#pragma once

#include "core/media/Streams.h"
#include "modules/MediaFoundationCodecs/CodecTable.h"

namespace Tarnex::MediaFoundation {

// Create decoders. The framework chooses the elements for the stream that it gets. Both throw
// `Tarnex::Exception` if the input's format has another media kind, or no size, rate or channels.
Proc::Pointer<Proc::IStreamVideo> NewVideoDecoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::ICodedStream>& input,
                                                  bool isSingleThreaded);
Proc::Pointer<Proc::IStreamAudio> NewAudioDecoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::ICodedStream>& input,
                                                  bool isSingleThreaded);

}  // namespace Tarnex::MediaFoundation
