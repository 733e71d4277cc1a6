#include "streams/FakeStreamVideo.h"

#include "core/media/CodecFactory.h"
#include "streams/TestColorSpace.h"
#include "timing/PhaseTimer.h"

namespace Tarnex::Core::Utils {
namespace {

using Proc::IFormatCodecVideo;
using Proc::ImplNames;
using Proc::PixFmt;

struct Size {
    int width;
    int height;
};

/// H.263 and DV allow only a few sizes. All other codecs take 1920x1080.
Size SizeFor(const std::string& codecId) {
    if (codecId == IFormatCodecVideo::CODEC_ID_H263) {
        return {352, 288};
    }
    if (codecId == IFormatCodecVideo::CODEC_ID_DVVIDEO) {
        return {720, 576};
    }
    return {1920, 1080};
}

}  // namespace

FakeStreamVideo::FakeStreamVideo(const std::string& implementation, const std::string& codecId)
    : FakeStream(25000),
      pixelFormat(implementation == ImplNames::NVDEC ? PixFmt::Nv12 : PixFmt::Yuv420p) {
    const Size size = SizeFor(codecId);
    formatCodec->InitByPixelAspect(size.width, size.height, 1, 1);
    if (implementation == ImplNames::MEDIA_FOUNDATION) {
        formatCodec->SetContainerName("");
    }
    formatCodec->SetPixelFormat(pixelFormat);
    formatCodec->SetFrameRate(25, 1);
    formatCodec->SetImageFlag(false);
    formatCodec->SetColorSpace(TEST_COLOR_SPACE);
}

Proc::Pointer<Proc::IFrameVideo> FakeStreamVideo::GetNextFrame() {
    const ScopedPhaseTimer timer(readTime);
    if (IsAtEnd()) {
        return {};
    }
    auto frame = Proc::CreateFactoryDataVideoFF()->CreateFrame(TEST_COLOR_SPACE, pixelFormat,
                                                               formatCodec->GetFrameInfo());
    frame->SetFrameTime(position);
    frame->SetFrameLength(duration);
    MoveOn(duration);
    return frame;
}

Proc::Property FakeStreamVideo::GetStatistic() const {
    return MakeStatistic("FakeStreamVideo::GetStatistic");
}

}  // namespace Tarnex::Core::Utils
