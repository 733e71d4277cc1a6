#pragma once

#include <string>

#include "core/media/Streams.h"
#include "modules/libav/CoderLog.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// One of libavcodec's decoders: reads packets, returns libav's frames. Thread-bound.
class FrameDecoder {
public:
    /// Throws `Tarnex::Exception` with the reason if the decoder can't be opened.
    FrameDecoder(const AVCodec& codec, Proc::Pointer<Proc::ICodedStream> input,
                 bool isSingleThreaded);

    /// The next frame, or null at the end; its time is in milliseconds. Skips packets that can't be
    /// decoded, such as those of a truncated file. Throws the failure of the first such packet if
    /// no packet gives a frame.
    [[nodiscard]] Handle<AVFrame> Next();
    /// Call it after a seek in the input.
    void Restart();

    /// What the decoder knows of its frames; complete once the first frame was read.
    const AVCodecContext& GetContext() const { return *coder; }
    CoderLog& GetLog() { return log; }

private:
    void Open();
    void Feed();
    /// True if the packet can't be decoded. Keeps the failure text of the first such packet.
    bool IsBadPacket(int result);
    [[noreturn]] void FailWithoutOutput() const;

    const AVCodec& codec;
    Proc::Pointer<Proc::ICodedStream> input;
    bool isSingleThreaded;
    CoderLog log;
    Handle<AVCodecParameters> parameters;
    Handle<AVCodecContext> coder;
    std::string firstBadPacket;
    bool gaveOutput = false;
};

}  // namespace Tarnex::Libav
