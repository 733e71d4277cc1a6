#pragma once

#include <memory>

#include "core/media/Streams.h"
#include "modules/libav/CoderLog.h"
#include "modules/libav/EncoderTraits.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// Reads a stream's frames and converts them to the form that an encoder takes. Thread-bound.
class EncoderInput {
public:
    virtual ~EncoderInput() = default;

    /// Chooses the form; call it before the encoder is opened. Throws `Tarnex::Exception` for a
    /// stream format that no encoder takes: on some of them libav itself would abort.
    virtual void Configure(AVCodecContext& encoder, const EncoderTraits& traits) = 0;

    /// The next frame, or null at the end.
    [[nodiscard]] virtual Handle<AVFrame> Next(const AVCodecContext& encoder) = 0;

    /// Discards what was read but not yet returned.
    virtual void Restart() {}
};

/// `log` must outlive the input.
std::unique_ptr<EncoderInput> MakePictureInput(Proc::Pointer<Proc::IStreamVideo> stream,
                                               CoderLog& log);
std::unique_ptr<EncoderInput> MakeSoundInput(Proc::Pointer<Proc::IStreamAudio> stream,
                                             CoderLog& log);

}  // namespace Tarnex::Libav
