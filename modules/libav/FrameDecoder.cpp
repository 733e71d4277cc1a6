#include "modules/libav/FrameDecoder.h"

#include <string>

#include "core/support/Exception.h"
#include "modules/libav/Parameters.h"

namespace Tarnex::Libav {
namespace {

/// Some decoders don't check this themselves.
void RequireDecodable(const AVCodecParameters& stream, const CoderLog& log) {
    if (stream.codec_type == AVMEDIA_TYPE_VIDEO) {
        if (stream.width <= 0 || stream.height <= 0) {
            log.Fail("can't decode " + std::to_string(stream.width) + "x" +
                     std::to_string(stream.height) + " pixels");
        }
    } else if (stream.sample_rate <= 0 || stream.ch_layout.nb_channels <= 0) {
        log.Fail("can't decode " + std::to_string(stream.ch_layout.nb_channels) + " channels at " +
                 std::to_string(stream.sample_rate) + " Hz");
    }
}

}  // namespace

FrameDecoder::FrameDecoder(const AVCodec& codec, Proc::Pointer<Proc::ICodedStream> input,
                           bool isSingleThreaded)
    : codec(codec),
      input(std::move(input)),
      isSingleThreaded(isSingleThreaded),
      log(std::string("Decoder ") + codec.name),
      parameters(GetParameters(*this->input)) {
    RequireDecodable(*parameters, log);
    Open();
}

void FrameDecoder::Open() {
    const LogScope scope(log);
    coder = Own(avcodec_alloc_context3(&codec));
    log.Check(avcodec_parameters_to_context(coder.get(), parameters.get()), "describing");
    coder->codec_id = codec.id;
    coder->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    coder->thread_count = isSingleThreaded ? 1 : 0;
    coder->pkt_timebase = GetTimeBase(*input);
    coder->framerate = GetFrameRate(*input);
    log.Check(avcodec_open2(coder.get(), &codec, nullptr), "opening");
}

Handle<AVFrame> FrameDecoder::Next() {
    const LogScope scope(log);
    Handle<AVFrame> frame = Own(av_frame_alloc());
    int result = 0;
    do {
        result = avcodec_receive_frame(coder.get(), frame.get());
        if (result == AVERROR(EAGAIN)) {
            Feed();
        }
    } while (result == AVERROR(EAGAIN) || IsBadPacket(result));
    if (result == AVERROR_EOF) {
        if (!gaveOutput) {
            FailWithoutOutput();
        }
        return {};
    }
    log.Check(result, "decoding");
    gaveOutput = true;
    const std::int64_t time = frame->best_effort_timestamp;
    frame->pts = time == AV_NOPTS_VALUE ? 0 : av_rescale_q(time, coder->pkt_timebase, MILLISECONDS);
    return frame;
}

void FrameDecoder::Feed() {
    const auto data = boost::dynamic_pointer_cast<Proc::IPacket>(input->ReadNext());
    if (!data) {
        log.Check(avcodec_send_packet(coder.get(), nullptr), "draining");
        return;
    }
    const Handle<AVPacket> packet = ToAvPacket(*data, coder->pkt_timebase);
    std::size_t size = 0;
    const std::uint8_t* extraData =
        av_packet_get_side_data(packet.get(), AV_PKT_DATA_NEW_EXTRADATA, &size);
    if (extraData != nullptr && !gaveOutput) {
        SetExtraData(*parameters, extraData, size);
        Open();
    }
    if (packet->size == 0) {
        return;  // such as FLAC's last packet, which only corrects the extradata
    }
    const int result = avcodec_send_packet(coder.get(), packet.get());
    if (!IsBadPacket(result)) {
        log.Check(result, "decoding");
    }
}

bool FrameDecoder::IsBadPacket(int result) {
    if (result != AVERROR_INVALIDDATA) {
        return false;
    }
    if (firstBadPacket.empty()) {
        firstBadPacket = log.Explain("decoding", result);
    }
    return true;
}

void FrameDecoder::FailWithoutOutput() const {
    if (!firstBadPacket.empty()) {
        throw Exception(firstBadPacket);
    }
    log.Fail("gave no output");
}

void FrameDecoder::Restart() {
    avcodec_flush_buffers(coder.get());
    firstBadPacket.clear();
    gaveOutput = false;
}

}  // namespace Tarnex::Libav
