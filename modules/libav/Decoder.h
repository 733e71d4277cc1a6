#pragma once

#include "core/media/Streams.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// Creates a decoder whose frames are planar YUV 4:2:0 or NV12.
Proc::Pointer<Proc::IStreamVideo> MakeVideoDecoder(const AVCodec& codec,
                                                   const Proc::Pointer<Proc::ICodedStream>& input,
                                                   bool isSingleThreaded);
/// Creates a decoder whose frames are interleaved 16-bit samples, mono or stereo.
Proc::Pointer<Proc::IStreamAudio> MakeAudioDecoder(const AVCodec& codec,
                                                   const Proc::Pointer<Proc::ICodedStream>& input,
                                                   bool isSingleThreaded);

}  // namespace Tarnex::Libav
