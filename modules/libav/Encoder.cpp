#include "modules/libav/Encoder.h"

#include <algorithm>

#include "modules/libav/CodecTable.h"
#include "modules/libav/Packet.h"
#include "modules/libav/Parameters.h"

namespace Tarnex::Libav {

using Proc::Pointer;

Encoder::Encoder(const AVCodec& codec, Pointer<Proc::IStreamVideo> stream,
                 Modules::EncoderOptions options)
    : CoderStream(stream, codec.name),
      codec(codec),
      traits(GetTraits(codec)),
      options(std::move(options)),
      log(std::string("Encoder ") + codec.name),
      input(MakePictureInput(std::move(stream), log)) {
    Open();
}

Encoder::Encoder(const AVCodec& codec, Pointer<Proc::IStreamAudio> stream,
                 Modules::EncoderOptions options)
    : CoderStream(stream, codec.name),
      codec(codec),
      traits(GetTraits(codec)),
      options(std::move(options)),
      log(std::string("Encoder ") + codec.name),
      input(MakeSoundInput(std::move(stream), log)) {
    Open();
}

Proc::MediaKind Encoder::GetMediaKind() const {
    return ToMediaKind(codec.type);
}

Pointer<Proc::IFormatCodec> Encoder::GetCodecFormat() const {
    return MakeFormat(*parameters, coder->framerate);
}

void Encoder::Open() {
    const LogScope scope(log);
    coder = Own(avcodec_alloc_context3(&codec));
    coder->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    coder->thread_count = options.isSingleThreaded ? 1 : 0;
    input->Configure(*coder, traits);

    SetOptions(traits.options);
    if (options.isFastest) {
        SetOptions(traits.fastest);
    }
    SetOptions(options.own.c_str());
    log.Check(avcodec_open2(coder.get(), &codec, nullptr), "opening");

    parameters = Own(avcodec_parameters_alloc());
    log.Check(avcodec_parameters_from_context(parameters.get(), coder.get()),
              "reading its parameters");
    if (traits.complete != nullptr) {
        traits.complete(*parameters);
    }
}

void Encoder::SetOptions(const char* text) {
    AVDictionary* dictionary = nullptr;
    av_dict_parse_string(&dictionary, text, "=", " ", 0);
    const int result = av_opt_set_dict2(coder.get(), &dictionary, AV_OPT_SEARCH_CHILDREN);
    const AVDictionaryEntry* unknown = av_dict_get(dictionary, "", nullptr, AV_DICT_IGNORE_SUFFIX);
    const std::string name = unknown == nullptr ? "" : unknown->key;
    av_dict_free(&dictionary);
    log.Check(result, "setting options");
    if (!name.empty()) {
        log.Fail("has no option \"" + name + '"');
    }
}

Pointer<Proc::IData> Encoder::MakeNext() {
    const LogScope scope(log);
    Handle<AVPacket> packet = Own(av_packet_alloc());
    int result = 0;
    while ((result = avcodec_receive_packet(coder.get(), packet.get())) == AVERROR(EAGAIN)) {
        Feed();
    }
    if (result == AVERROR_EOF) {
        if (!gaveOutput) {
            log.Fail("gave no output");
        }
        return {};
    }
    log.Check(result, "encoding");
    gaveOutput = true;
    return new Packet(Complete(std::move(packet)), coder->time_base);
}

void Encoder::Feed() {
    const Handle<AVFrame> frame = input->Next(*coder);
    isFed = true;
    log.Check(avcodec_send_frame(coder.get(), frame.get()), "sending it a frame");
}

Handle<AVPacket> Encoder::Complete(Handle<AVPacket> packet) const {
    packet->flags |= traits.packetFlags;
    if (traits.packetPrefix == nullptr) {
        return packet;
    }
    const std::string prefix = traits.packetPrefix(*parameters);
    const auto size = static_cast<std::size_t>(packet->size);
    Handle<AVPacket> completed = Own(av_packet_alloc());
    log.Check(av_new_packet(completed.get(), static_cast<int>(prefix.size() + size)),
              "making a packet");
    log.Check(av_packet_copy_props(completed.get(), packet.get()), "describing a packet");
    std::copy(prefix.begin(), prefix.end(), completed->data);
    std::copy_n(packet->data, size, completed->data + prefix.size());
    return completed;
}

void Encoder::Restart() {
    input->Restart();
    if (isFed) {
        isFed = gaveOutput = false;
        Open();
    }
}

}  // namespace Tarnex::Libav
