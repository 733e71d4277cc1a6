#pragma once

#include <memory>

#include "core/media/Streams.h"
#include "modules/libav/CoderLog.h"
#include "modules/libav/EncoderTraits.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// What an encoder reads: the frames of a stream in the form that the encoder takes. Thread-bound.
class EncoderInput {
public:
    virtual ~EncoderInput() = default;

    /// Settles the form, before the encoder is opened. Throws `Tarnex::Exception` for a format that
    /// no encoder could take (libav itself would abort on some).
    virtual void Configure(AVCodecContext& encoder, const EncoderTraits& traits) = 0;

    /// The next frame, empty at the end.
    [[nodiscard]] virtual Handle<AVFrame> Next(const AVCodecContext& encoder) = 0;

    /// Forgets what was read and not given.
    virtual void Restart() {}
};

/// `log` must outlive the input.
std::unique_ptr<EncoderInput> MakePictureInput(Proc::Pointer<Proc::IStreamVideo> stream,
                                               CoderLog& log);
std::unique_ptr<EncoderInput> MakeSoundInput(Proc::Pointer<Proc::IStreamAudio> stream,
                                             CoderLog& log);

}  // namespace Tarnex::Libav
