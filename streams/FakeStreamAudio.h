#pragma once

#include "streams/FakeStream.h"

namespace Tarnex::Core::Utils {

/// A synthetic audio source of one frame: 44100 Hz, stereo, the same for every codec.
class FakeStreamAudio : public FakeStream<Proc::IStreamAudio, Proc::IFormatCodecAudio> {
public:
    FakeStreamAudio();

    /// The frame, or null at the end. Throws what the core's frame factory throws.
    Proc::Pointer<Proc::IFrameAudio> GetNextFrame() override;
    Proc::Property GetStatistic() const override;
};

}  // namespace Tarnex::Core::Utils
