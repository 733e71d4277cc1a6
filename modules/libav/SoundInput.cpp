#include <string>

#include "modules/common/CoderLimits.h"
#include "modules/libav/Conversion.h"
#include "modules/libav/EncoderInput.h"

namespace Tarnex::Libav {
namespace {

/// The frame size for encoders that take any.
constexpr int SAMPLES_PER_FRAME = 1024;

/// Returns `wanted` if it is in the list or there is no list, else the first of the list. The list
/// ends with `end`.
template <class T>
T ChooseOf(const T* list, T end, T wanted) {
    if (list == nullptr) {
        return wanted;
    }
    for (const T* item = list; *item != end; ++item) {
        if (*item == wanted) {
            return wanted;
        }
    }
    return *list;
}

AVSampleFormat ChooseSampleFormat(const AVCodec& encoder) {
    const AVSampleFormat format =
        ChooseOf(encoder.sample_fmts, AV_SAMPLE_FMT_NONE, AV_SAMPLE_FMT_S16);
    return format == AV_SAMPLE_FMT_S16
               ? format
               : ChooseOf(encoder.sample_fmts, AV_SAMPLE_FMT_NONE, AV_SAMPLE_FMT_S16P);
}

void ChooseLayout(AVCodecContext& encoder, int channels) {
    av_channel_layout_default(&encoder.ch_layout, channels);
    const AVChannelLayout* list = encoder.codec->ch_layouts;
    if (list == nullptr) {
        return;
    }
    for (const AVChannelLayout* item = list; item->nb_channels != 0; ++item) {
        if (av_channel_layout_compare(item, &encoder.ch_layout) == 0) {
            return;
        }
    }
    av_channel_layout_copy(&encoder.ch_layout, list);
}

class SoundInput : public EncoderInput {
public:
    SoundInput(Proc::Pointer<Proc::IStreamAudio> stream, CoderLog& log)
        : stream(std::move(stream)), log(log), converter(log) {}

    void Configure(AVCodecContext& encoder, const EncoderTraits& traits) override {
        const Proc::SampleInfo info = stream->GetFormatCodec()->GetSampleInfo();
        if (const std::string fault = Modules::FindFault(info); !fault.empty()) {
            log.Fail(fault);
        }
        const AVCodec& coder = *encoder.codec;
        encoder.sample_fmt = ChooseSampleFormat(coder);
        encoder.sample_rate = ChooseOf(coder.supported_samplerates, 0,
                                       traits.sampleRate == 0 ? info.rate : traits.sampleRate);
        ChooseLayout(encoder,
                     traits.channels == 0 ? static_cast<int>(info.layout) : traits.channels);
        encoder.time_base = {1, encoder.sample_rate};
    }

    Handle<AVFrame> Next(const AVCodecContext& encoder) override {
        const int size = encoder.frame_size == 0 ? SAMPLES_PER_FRAME : encoder.frame_size;
        while (av_audio_fifo_size(Fifo(encoder)) < size) {
            const Proc::Pointer<Proc::IFrameAudio> frame = stream->GetNextFrame();
            if (!frame) {
                break;
            }
            Append(*frame, encoder);
        }
        return av_audio_fifo_size(fifo.get()) == 0 ? Handle<AVFrame>() : Take(size, encoder);
    }

    void Restart() override { fifo.reset(); }

private:
    AVAudioFifo* Fifo(const AVCodecContext& encoder) {
        if (!fifo) {
            fifo = Own(av_audio_fifo_alloc(encoder.sample_fmt, encoder.ch_layout.nb_channels, 1));
            position = AV_NOPTS_VALUE;
        }
        return fifo.get();
    }

    void Append(Proc::IFrameAudio& frame, const AVCodecContext& encoder) {
        frame.PrepareFrame();
        const Handle<AVFrame> sound = converter.Convert(*ToAvFrame(frame), encoder.sample_fmt,
                                                        encoder.sample_rate, encoder.ch_layout);
        if (position == AV_NOPTS_VALUE) {
            position = av_rescale_q(frame.GetFrameTime(), MILLISECONDS, encoder.time_base);
        }
        log.Check(av_audio_fifo_write(fifo.get(), reinterpret_cast<void**>(sound->extended_data),
                                      sound->nb_samples),
                  "buffering sound");
    }

    /// Fills up the last frame with silence, because some coders take only whole frames.
    Handle<AVFrame> Take(int samples, const AVCodecContext& encoder) {
        Handle<AVFrame> sound = Own(av_frame_alloc());
        sound->format = encoder.sample_fmt;
        sound->sample_rate = encoder.sample_rate;
        sound->nb_samples = samples;
        sound->pts = position;
        log.Check(av_channel_layout_copy(&sound->ch_layout, &encoder.ch_layout),
                  "copying a channel layout");
        log.Check(av_frame_get_buffer(sound.get(), 0), "making a sound frame");
        const int read = log.Check(
            av_audio_fifo_read(fifo.get(), reinterpret_cast<void**>(sound->extended_data), samples),
            "reading buffered sound");
        av_samples_set_silence(sound->extended_data, read, samples - read,
                               sound->ch_layout.nb_channels, encoder.sample_fmt);
        position += samples;
        return sound;
    }

    Proc::Pointer<Proc::IStreamAudio> stream;
    CoderLog& log;
    SoundConverter converter;
    Handle<AVAudioFifo> fifo;
    /// Time of the first sample in `fifo`, in units of the encoder.
    std::int64_t position = AV_NOPTS_VALUE;
};

}  // namespace

std::unique_ptr<EncoderInput> MakeSoundInput(Proc::Pointer<Proc::IStreamAudio> stream,
                                             CoderLog& log) {
    return std::make_unique<SoundInput>(std::move(stream), log);
}

}  // namespace Tarnex::Libav
