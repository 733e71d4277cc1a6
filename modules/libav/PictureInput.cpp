#include <algorithm>
#include <string>

#include "modules/libav/Conversion.h"
#include "modules/libav/EncoderInput.h"

namespace Tarnex::Libav {
namespace {

/// Some encoders loop or abort below and above.
constexpr int MIN_SIDE = 16;
constexpr int MAX_SIDE = 16384;

bool IsEncodable(const Proc::FrameInfo& info, const Proc::FrameRate& rate) {
    return std::min(info.width, info.height) >= MIN_SIDE &&
           std::max(info.width, info.height) <= MAX_SIDE && info.aspectX > 0 && info.aspectY > 0 &&
           rate.numerator > 0 && rate.denominator > 0;
}

std::string Describe(const Proc::FrameInfo& info, const Proc::FrameRate& rate) {
    return std::to_string(info.width) + " by " + std::to_string(info.height) + " pixels of " +
           std::to_string(info.aspectX) + ":" + std::to_string(info.aspectY) + " at " +
           std::to_string(rate.numerator) + "/" + std::to_string(rate.denominator) + " frames";
}

AVPixelFormat ChoosePixelFormat(const AVCodec& encoder, Proc::PixFmt source) {
    const AVPixelFormat given = source == Proc::PixFmt::Nv12 ? AV_PIX_FMT_NV12 : AV_PIX_FMT_YUV420P;
    return encoder.pix_fmts == nullptr
               ? given
               : avcodec_find_best_pix_fmt_of_list(encoder.pix_fmts, given, 0, nullptr);
}

class PictureInput : public EncoderInput {
public:
    PictureInput(Proc::Pointer<Proc::IStreamVideo> stream, CoderLog& log)
        : stream(std::move(stream)), log(log), converter(log) {}

    void Configure(AVCodecContext& encoder, const EncoderTraits& traits) override {
        const Proc::Pointer<Proc::IFormatCodecVideo> format = stream->GetFormatCodec();
        const Proc::FrameInfo info = format->GetFrameInfo();
        const Proc::FrameRate rate = format->GetFrameRate();
        if (!IsEncodable(info, rate)) {
            log.Fail("can't encode " + Describe(info, rate));
        }
        encoder.width = traits.width == 0 ? info.width : traits.width;
        encoder.height = traits.height == 0 ? info.height : traits.height;
        encoder.sample_aspect_ratio = {info.aspectX, info.aspectY};
        encoder.framerate = {rate.numerator, rate.denominator};
        encoder.time_base = {rate.denominator, rate.numerator};
        encoder.pix_fmt = traits.pixelFormat == AV_PIX_FMT_NONE
                              ? ChoosePixelFormat(*encoder.codec, format->GetPixelFormat())
                              : traits.pixelFormat;
    }

    Handle<AVFrame> Next(const AVCodecContext& encoder) override {
        const Proc::Pointer<Proc::IFrameVideo> frame = stream->GetNextFrame();
        if (!frame) {
            return {};
        }
        frame->PrepareFrame();
        Handle<AVFrame> picture =
            converter.Convert(ToAvFrame(frame), {encoder.pix_fmt, encoder.width, encoder.height});
        picture->pts = av_rescale_q(picture->pts, MILLISECONDS, encoder.time_base);
        return picture;
    }

private:
    Proc::Pointer<Proc::IStreamVideo> stream;
    CoderLog& log;
    PictureConverter converter;
};

}  // namespace

std::unique_ptr<EncoderInput> MakePictureInput(Proc::Pointer<Proc::IStreamVideo> stream,
                                               CoderLog& log) {
    return std::make_unique<PictureInput>(std::move(stream), log);
}

}  // namespace Tarnex::Libav
