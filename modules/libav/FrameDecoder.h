#pragma once

#include <string>

#include "core/media/Streams.h"
#include "modules/libav/CoderLog.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// A decoder of libavcodec: packets in, libav's frames out. Thread-bound.
class FrameDecoder {
public:
    /// Throws `Tarnex::Exception` with the reason if the decoder can't be opened.
    FrameDecoder(const AVCodec& codec, Proc::Pointer<Proc::ICodedStream> input,
                 bool isSingleThreaded);

    /// The next frame, empty at the end. Its time is in milliseconds. Goes on over packets that
    /// can't be decoded, as a file has them that was cut; if no frame comes of the others, the
    /// first one's failure is thrown.
    [[nodiscard]] Handle<AVFrame> Next();
    /// The input was moved.
    void Restart();

    /// What it knows of the frames: all after the first one.
    const AVCodecContext& GetContext() const { return *coder; }
    CoderLog& GetLog() { return log; }

private:
    void Open();
    void Feed();
    /// Notes the failure text of the first one.
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
