#pragma once

#include "core/media/Frames.h"
#include "modules/libav/CoderLog.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// Throws `Tarnex::Exception` for a value that is none.
AVPixelFormat ToAvFormat(Proc::PixFmt format);

/// The core's frame as libav's. The pixels are shared, not copied. Throws `Tarnex::Exception` for a
/// frame that has no planes or no known pixel format.
[[nodiscard]] Handle<AVFrame> ToAvFrame(const Proc::Pointer<Proc::IFrameVideo>& frame);
/// The same for sound; the frame must outlive the result.
[[nodiscard]] Handle<AVFrame> ToAvFrame(const Proc::IFrameAudio& frame);

struct PictureForm {
    AVPixelFormat format;
    int width;
    int height;
};

/// Scales pictures and converts their pixels. Thread-bound.
class PictureConverter {
public:
    explicit PictureConverter(CoderLog& log) : log(log) {}

    /// The picture in that form; itself where it has it.
    [[nodiscard]] Handle<AVFrame> Convert(Handle<AVFrame> picture, const PictureForm& form);

private:
    CoderLog& log;
    Handle<SwsContext> scaler;
};

/// Resamples, mixes and converts sound. Thread-bound.
class SoundConverter {
public:
    explicit SoundConverter(CoderLog& log) : log(log) {}

    /// The sound in that form, without what the resampler keeps back.
    [[nodiscard]] Handle<AVFrame> Convert(const AVFrame& sound, AVSampleFormat format, int rate,
                                          const AVChannelLayout& layout);

private:
    CoderLog& log;
    Handle<SwrContext> resampler;
};

}  // namespace Tarnex::Libav
