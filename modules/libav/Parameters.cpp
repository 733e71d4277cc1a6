#include "modules/libav/Parameters.h"

#include <algorithm>

#include "modules/libav/CodecTable.h"
#include "modules/libav/CodedStream.h"
#include "modules/libav/Packet.h"

namespace Tarnex::Libav {
namespace {

using Proc::Pointer;

int AtLeastOne(int value) {
    return std::max(value, 1);
}

Pointer<Proc::IFormatCodec> MakeVideoFormat(const AVCodecParameters& parameters, AVRational rate) {
    Pointer<Proc::IFormatCodecVideo> format = Proc::IFormatCodecVideo::Create();
    const AVRational aspect = parameters.sample_aspect_ratio;
    format->InitByPixelAspect(parameters.width, parameters.height, AtLeastOne(aspect.num),
                              AtLeastOne(aspect.den));
    if (rate.num > 0 && rate.den > 0) {
        format->SetFrameRate(rate.num, rate.den);
    }
    format->SetColorSpace(
        ToColorSpace(parameters.color_primaries, parameters.color_trc, parameters.color_space));
    return format;
}

Pointer<Proc::IFormatCodec> MakeAudioFormat(const AVCodecParameters& parameters) {
    Pointer<Proc::IFormatCodecAudio> format = Proc::IFormatCodecAudio::Create();
    Proc::SampleInfo info;
    info.Init(Proc::SampleFormats::S16, parameters.sample_rate,
              parameters.ch_layout.nb_channels == 1 ? Proc::ChannelLayout::Mono
                                                    : Proc::ChannelLayout::Stereo);
    format->SetSampleInfo(info);
    format->SetBitrate(parameters.bit_rate);
    return format;
}

void Describe(AVCodecParameters& parameters, const Proc::IFormatCodec& format) {
    if (const auto* video = dynamic_cast<const Proc::IFormatCodecVideo*>(&format)) {
        const Proc::FrameInfo info = video->GetFrameInfo();
        parameters.codec_type = AVMEDIA_TYPE_VIDEO;
        parameters.width = info.width;
        parameters.height = info.height;
        parameters.sample_aspect_ratio = {info.aspectX, info.aspectY};
    } else if (const auto* audio = dynamic_cast<const Proc::IFormatCodecAudio*>(&format)) {
        const Proc::SampleInfo info = audio->GetSampleInfo();
        parameters.codec_type = AVMEDIA_TYPE_AUDIO;
        parameters.sample_rate = info.rate;
        parameters.bit_rate = audio->GetBitrate();
        av_channel_layout_default(&parameters.ch_layout, static_cast<int>(info.layout));
    }
}

}  // namespace

Proc::ColorSpace ToColorSpace(AVColorPrimaries primaries, AVColorTransferCharacteristic transfer,
                              AVColorSpace matrix) {
    return {static_cast<std::uint32_t>(primaries), static_cast<std::uint32_t>(transfer),
            static_cast<std::uint32_t>(matrix)};
}

Pointer<Proc::IFormatCodec> MakeFormat(const AVCodecParameters& parameters, AVRational frameRate) {
    Pointer<Proc::IFormatCodec> format = parameters.codec_type == AVMEDIA_TYPE_VIDEO
                                             ? MakeVideoFormat(parameters, frameRate)
                                             : MakeAudioFormat(parameters);
    format->SetCodecID(ToCodecId(parameters.codec_id));
    format->SetExtraData({parameters.extradata, parameters.extradata + parameters.extradata_size});
    return format;
}

Handle<AVCodecParameters> GetParameters(const Proc::ICodedStream& stream) {
    Handle<AVCodecParameters> parameters = Own(avcodec_parameters_alloc());
    if (const auto* ours = dynamic_cast<const CodedStream*>(&stream)) {
        if (avcodec_parameters_copy(parameters.get(), &ours->GetParameters()) < 0) {
            throw std::bad_alloc();
        }
        return parameters;
    }
    const Pointer<Proc::IFormatCodec> format = stream.GetCodecFormat();
    parameters->codec_id = FromCodecId(format->GetCodecID());
    Describe(*parameters, *format);
    const std::vector<std::uint8_t>& extraData = format->GetExtraData();
    SetExtraData(*parameters, extraData.data(), extraData.size());
    return parameters;
}

AVRational GetTimeBase(const Proc::ICodedStream& stream) {
    const auto* ours = dynamic_cast<const CodedStream*>(&stream);
    return ours == nullptr ? MILLISECONDS : ours->GetTimeBase();
}

AVRational GetFrameRate(const Proc::ICodedStream& stream) {
    const Pointer<Proc::IFormatCodec> format = stream.GetCodecFormat();
    const auto* video = dynamic_cast<const Proc::IFormatCodecVideo*>(format.get());
    if (video == nullptr) {
        return {0, 1};
    }
    const Proc::FrameRate rate = video->GetFrameRate();
    return {rate.numerator, rate.denominator};
}

void SetExtraData(AVCodecParameters& parameters, const std::uint8_t* data, std::size_t size) {
    av_freep(&parameters.extradata);
    parameters.extradata_size = 0;
    if (size == 0) {
        return;
    }
    auto* copy = static_cast<std::uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::copy_n(data, size, copy);
    parameters.extradata = copy;
    parameters.extradata_size = static_cast<int>(size);
}

Handle<AVPacket> ToAvPacket(const Proc::IPacket& packet, AVRational timeBase) {
    if (const auto* ours = dynamic_cast<const Packet*>(&packet)) {
        return Own(av_packet_clone(&ours->Get()));
    }
    Handle<AVPacket> copy = Own(av_packet_alloc());
    if (av_new_packet(copy.get(), static_cast<int>(packet.GetSize())) < 0) {
        throw std::bad_alloc();
    }
    std::copy_n(packet.GetData(), packet.GetSize(), copy->data);
    copy->pts = copy->dts = av_rescale_q(packet.GetTime(), MILLISECONDS, timeBase);
    copy->flags = packet.IsKey() ? AV_PKT_FLAG_KEY : 0;
    return copy;
}

void SetColors(AVCodecContext& encoder, const Proc::ColorSpace& space) {
    const bool isRgb = (av_pix_fmt_desc_get(encoder.pix_fmt)->flags & AV_PIX_FMT_FLAG_RGB) != 0;
    encoder.color_primaries = static_cast<AVColorPrimaries>(space.primaries);
    encoder.color_trc = static_cast<AVColorTransferCharacteristic>(space.transfer);
    encoder.colorspace = isRgb ? AVCOL_SPC_RGB : static_cast<AVColorSpace>(space.matrix);
}

}  // namespace Tarnex::Libav
