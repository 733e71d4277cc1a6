#pragma once

#include <memory>
#include <string>

#include "modules/common/EncoderOptions.h"
#include "modules/libav/CodedStream.h"
#include "modules/libav/EncoderInput.h"

namespace Tarnex::Libav {

/// One of libavcodec's encoders. Its packets have the form in which a file's parser delivers them,
/// so that a decoder needn't know where a stream comes from. Thread-bound.
class Encoder : public Modules::CoderStream<Proc::ICodedStream, CodedStream> {
public:
    /// Throws `Tarnex::Exception` with the reason if the encoder can't be opened.
    Encoder(const AVCodec& codec, Proc::Pointer<Proc::IStreamVideo> stream,
            Modules::EncoderOptions options);
    Encoder(const AVCodec& codec, Proc::Pointer<Proc::IStreamAudio> stream,
            Modules::EncoderOptions options);

    Proc::MediaKind GetMediaKind() const override;
    Proc::Pointer<Proc::IFormatCodec> GetCodecFormat() const override;
    const AVCodecParameters& GetParameters() const override { return *parameters; }
    AVRational GetTimeBase() const override { return coder->time_base; }

protected:
    Proc::Pointer<Proc::IData> MakeNext() override;
    void Restart() override;

private:
    void Open();
    /// Sets "key=value key=value". Fails on a key that the encoder doesn't have.
    void SetOptions(const char* text);
    void Feed();
    Handle<AVPacket> Complete(Handle<AVPacket> packet) const;

    const AVCodec& codec;
    const EncoderTraits& traits;
    Modules::EncoderOptions options;
    CoderLog log;
    std::unique_ptr<EncoderInput> input;
    Handle<AVCodecContext> coder;
    Handle<AVCodecParameters> parameters;
    bool isFed = false;
    bool gaveOutput = false;
};

}  // namespace Tarnex::Libav
