#include <string>

#include "modules/common/CoderLimits.h"
#include "modules/libav/Conversion.h"
#include "modules/libav/EncoderInput.h"
#include "modules/libav/Parameters.h"

namespace Tarnex::Libav {
namespace {

AVPixelFormat ChoosePixelFormat(const AVCodec& encoder, Proc::PixFmt source) {
    const AVPixelFormat given = ToAvFormat(source);
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
        if (const std::string fault = Modules::FindFault(info, rate); !fault.empty()) {
            log.Fail(fault);
        }
        encoder.width = traits.width == 0 ? info.width : traits.width;
        encoder.height = traits.height == 0 ? info.height : traits.height;
        encoder.sample_aspect_ratio = {info.aspectX, info.aspectY};
        encoder.framerate = {rate.numerator, rate.denominator};
        encoder.time_base = {rate.denominator, rate.numerator};
        encoder.pix_fmt = traits.pixelFormat == AV_PIX_FMT_NONE
                              ? ChoosePixelFormat(*encoder.codec, format->GetPixelFormat())
                              : traits.pixelFormat;
        SetColors(encoder, format->GetColorSpace());
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
