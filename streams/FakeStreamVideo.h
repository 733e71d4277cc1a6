#pragma once

#include <string>

#include "streams/FakeStream.h"

namespace Tarnex::Core::Utils {

/// A synthetic video source of one frame, in a size that the codec takes.
class FakeStreamVideo : public FakeStream<Proc::IStreamVideo, Proc::IFormatCodecVideo> {
public:
    /// `implementation` selects the pixel format, `codecId` the size.
    FakeStreamVideo(const std::string& implementation, const std::string& codecId);

    /// The frame, or null at the end. Throws what the core's frame factory throws.
    Proc::Pointer<Proc::IFrameVideo> GetNextFrame() override;
    Proc::Property GetStatistic() const override;

private:
    Proc::PixFmt pixelFormat;
};

}  // namespace Tarnex::Core::Utils
