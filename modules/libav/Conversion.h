#pragma once

#include "core/media/Frames.h"
#include "modules/libav/CoderLog.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// Throws `Tarnex::Exception` for an unknown value.
AVPixelFormat ToAvFormat(Proc::PixFmt format);

/// Wraps the core's frame as libav's. Shares the pixels, without a copy. Throws `Tarnex::Exception`
/// if the frame's pixel format is unknown or its planes don't fit the format.
[[nodiscard]] Handle<AVFrame> ToAvFrame(const Proc::Pointer<Proc::IFrameVideo>& frame);
/// Wraps the core's sound. The frame must outlive the result.
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

    /// Converts to `form`. Returns the picture itself if it already has that form.
    [[nodiscard]] Handle<AVFrame> Convert(Handle<AVFrame> picture, const PictureForm& form);

private:
    CoderLog& log;
    Handle<SwsContext> scaler;
};

/// Resamples, mixes and converts sound. Thread-bound.
class SoundConverter {
public:
    explicit SoundConverter(CoderLog& log) : log(log) {}

    /// Converts the sound. The resampler may keep back some samples for the next call.
    [[nodiscard]] Handle<AVFrame> Convert(const AVFrame& sound, AVSampleFormat format, int rate,
                                          const AVChannelLayout& layout);

private:
    CoderLog& log;
    Handle<SwrContext> resampler;
};

}  // namespace Tarnex::Libav
