#include "modules/MediaFoundationCodecs/Encoder.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "core/support/Exception.h"
#include "modules/MediaFoundationCodecs/Input.h"
#include "modules/MediaFoundationCodecs/Output.h"
#include "modules/MediaFoundationCodecs/Pipeline.h"
#include "modules/MediaFoundationCodecs/StreamHeaders.h"
#include "modules/common/CoderLimits.h"
#include "modules/common/CoderStream.h"

namespace Tarnex::MediaFoundation {

namespace {

std::string ElementsOf(const Codec& codec, const Modules::EncoderOptions& options) {
    const char* const convert = codec.kind == Proc::MediaKind::Video
                                    ? "videoconvert ! "
                                    : "audioconvert ! audioresample ! ";
    return std::string(convert) + codec.encoder + " " + codec.settings + " " +
           (options.isFastest ? codec.fastest : "");
}

Input ToInput(const Proc::IFrameVideo& frame, const Proc::IFormatCodecVideo& format) {
    return InputOf(frame, format.GetFrameRate());
}

Input ToInput(const Proc::IFrameAudio& frame, const Proc::IFormatCodecAudio& /*format*/) {
    return InputOf(frame);
}

std::string FindFault(const Proc::IFormatCodecVideo& format) {
    return Modules::FindFault(format.GetFrameInfo(), format.GetFrameRate());
}

std::string FindFault(const Proc::IFormatCodecAudio& format) {
    return Modules::FindFault(format.GetSampleInfo());
}

/// Copies what is known before the start: the source's size and rates.
void Describe(Proc::IFormatCodecVideo& format, const Proc::IFormatCodecVideo& source) {
    const Proc::FrameInfo info = source.GetFrameInfo();
    const Proc::FrameRate rate = source.GetFrameRate();
    format.InitByPixelAspect(info.width, info.height, info.aspectX, info.aspectY);
    format.SetPixelFormat(source.GetPixelFormat());
    format.SetFrameRate(rate.numerator, rate.denominator);
    format.SetColorSpace(source.GetColorSpace());
}

void Describe(Proc::IFormatCodecAudio& format, const Proc::IFormatCodecAudio& source) {
    format.SetBitrateMode(source.GetBitrateMode());
    format.SetSampleInfo(source.GetSampleInfo());
    format.SetBitrate(source.GetBitrate());
}

void Complete(Proc::IFormatCodecVideo& /*format*/, const GstCaps* /*caps*/) {}

/// Takes the actual rate and channels: some encoders don't use those of the source.
void Complete(Proc::IFormatCodecAudio& format, const GstCaps* caps) {
    const GstStructure* structure = gst_caps_get_structure(caps, 0);
    Proc::SampleInfo info = format.GetSampleInfo();
    int channels = static_cast<int>(info.layout);
    gst_structure_get(structure, "rate", G_TYPE_INT, &info.rate, "channels", G_TYPE_INT, &channels,
                      nullptr);
    info.layout = static_cast<Proc::ChannelLayout>(channels);
    format.SetSampleInfo(info);
}

template <class Source, class Format>
class Encoder : public Modules::CoderStream<Proc::ICodedStream> {
public:
    Encoder(const Codec& codec, Proc::Pointer<Source> newSource, Modules::EncoderOptions options)
        : CoderStream(newSource, "MediaFoundationEncoder"),
          codec(codec),
          title(std::string("The encoder of ") + codec.id),
          source(std::move(newSource)),
          options(std::move(options)),
          format(Format::Create()) {
        format->SetCodecID(codec.id);
        const auto given = source->GetFormatCodec();
        if (const std::string fault = FindFault(*given); !fault.empty()) {
            throw Exception(title + ": " + fault);
        }
        Describe(*format, *given);
    }

    Proc::MediaKind GetMediaKind() const override { return codec.kind; }
    Proc::Pointer<Proc::IFormatCodec> GetCodecFormat() const override { return format; }

protected:
    Proc::Pointer<Proc::IData> MakeNext() override {
        if (!pipeline) {
            pipeline.emplace(title, ElementsOf(codec, options), options.isSingleThreaded);
            isComplete = false;
        }
        GstOwner<GstSample> sample = pipeline->Next([this] { return PushFrame(); });
        if (!sample) {
            return nullptr;
        }
        if (!isComplete) {
            const GstCaps* caps = gst_sample_get_caps(sample.get());
            format->SetExtraData(ExtraDataOf(codec, caps));
            Complete(*format, caps);
            isComplete = true;
        }
        return PacketOf(std::move(sample));
    }
    void Restart() override { pipeline.reset(); }

private:
    bool PushFrame() {
        const auto frame = source->GetNextFrame();
        if (!frame) {
            return false;
        }
        frame->PrepareFrame();
        Input input = ToInput(*frame, *source->GetFormatCodec());
        pipeline->SetInputCaps(input.caps.get());
        pipeline->Push(std::move(input.buffer));
        return true;
    }

    const Codec& codec;
    std::string title;
    Proc::Pointer<Source> source;
    Modules::EncoderOptions options;
    Proc::Pointer<Format> format;
    bool isComplete = false;
    std::optional<Pipeline> pipeline;
};

}  // namespace

Proc::Pointer<Proc::ICodedStream> NewVideoEncoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::IStreamVideo>& stream,
                                                  Modules::EncoderOptions options) {
    return new Encoder<Proc::IStreamVideo, Proc::IFormatCodecVideo>(codec, stream,
                                                                    std::move(options));
}

Proc::Pointer<Proc::ICodedStream> NewAudioEncoder(const Codec& codec,
                                                  const Proc::Pointer<Proc::IStreamAudio>& stream,
                                                  Modules::EncoderOptions options) {
    return new Encoder<Proc::IStreamAudio, Proc::IFormatCodecAudio>(codec, stream,
                                                                    std::move(options));
}

}  // namespace Tarnex::MediaFoundation
