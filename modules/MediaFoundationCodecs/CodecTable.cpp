#include "modules/MediaFoundationCodecs/CodecTable.h"

#include <algorithm>

namespace Tarnex::MediaFoundation {

namespace {

using Proc::MediaKind;

constexpr char VPX_FASTEST[] = "deadline=1 cpu-used=8 lag-in-frames=0";

// openh264enc is no choice for H.264: it prints to standard error on its own. mpeg2enc is none for
// MPEG-2: it ends the process where one frame is all that it gets.
constexpr Codec CODECS[] = {
    {.id = "CODEC_ID_AAC",
     .kind = MediaKind::Audio,
     .caps = "audio/mpeg,mpegversion=4,stream-format=adts",
     .headers = Headers::Config,
     .configuredFormat = "raw",
     .encoder = "voaacenc"},
    {.id = "CODEC_ID_MP3",
     .kind = MediaKind::Audio,
     .caps = "audio/mpeg,mpegversion=1,layer=3",
     .encoder = "lamemp3enc",
     .fastest = "encoding-engine-quality=fast"},
    {.id = "CODEC_ID_OPUS",
     .kind = MediaKind::Audio,
     .caps = "audio/x-opus,channel-mapping-family=0",
     .encoder = "opusenc",
     .fastest = "complexity=0"},
    {.id = "CODEC_ID_VORBIS",
     .kind = MediaKind::Audio,
     .caps = "audio/x-vorbis",
     .headers = Headers::Xiph,
     .encoder = "vorbisenc"},
    {.id = "CODEC_ID_FLAC",
     .kind = MediaKind::Audio,
     .caps = "audio/x-flac",
     .headers = Headers::StreamInfo,
     .encoder = "flacenc",
     .fastest = "quality=0"},
    {.id = "CODEC_ID_AC3", .kind = MediaKind::Audio, .caps = "audio/x-ac3"},
    {.id = "CODEC_ID_H264",
     .kind = MediaKind::Video,
     .caps = "video/x-h264,stream-format=byte-stream",
     .headers = Headers::ParameterSets,
     .configuredFormat = "avc",
     .encoder = "x264enc",
     .settings = "byte-stream=true",
     .fastest = "speed-preset=ultrafast tune=zerolatency"},
    {.id = "CODEC_ID_H265",
     .kind = MediaKind::Video,
     .caps = "video/x-h265,stream-format=byte-stream",
     .headers = Headers::ParameterSets,
     .configuredFormat = "hvc1",
     .encoder = "x265enc",
     .fastest = "speed-preset=ultrafast tune=zerolatency"},
    // Without alpha: the decoders for streams with alpha come first otherwise.
    {.id = "CODEC_ID_VP8",
     .kind = MediaKind::Video,
     .caps = "video/x-vp8,codec-alpha=false",
     .encoder = "vp8enc",
     .fastest = VPX_FASTEST},
    {.id = "CODEC_ID_VP9",
     .kind = MediaKind::Video,
     .caps = "video/x-vp9,codec-alpha=false",
     .encoder = "vp9enc",
     .fastest = VPX_FASTEST},
    {.id = "CODEC_ID_AV1",
     .kind = MediaKind::Video,
     .caps = "video/x-av1,stream-format=obu-stream,alignment=tu",
     .encoder = "av1enc",
     .fastest = "usage-profile=realtime cpu-used=10 lag-in-frames=0"},
    {.id = "CODEC_ID_MJPEG",
     .kind = MediaKind::Video,
     .caps = "image/jpeg",
     .encoder = "jpegenc",
     .fastest = "idct-method=ifast"},
    {.id = "CODEC_ID_THEORA",
     .kind = MediaKind::Video,
     .caps = "video/x-theora",
     .headers = Headers::Xiph,
     .encoder = "theoraenc",
     .fastest = "speed-level=3"},
    {.id = "CODEC_ID_MPEG2VIDEO",
     .kind = MediaKind::Video,
     .caps = "video/mpeg,mpegversion=2,systemstream=false",
     .tail = {"\x00\x00\x01\xB7", 4}},  // the end code of a sequence
    {.id = "CODEC_ID_DVVIDEO", .kind = MediaKind::Video, .caps = "video/x-dv,systemstream=false"},
};

}  // namespace

std::span<const Codec> AllCodecs() {
    return CODECS;
}

const Codec* FindCodec(const std::string& codecId) {
    const auto* const found = std::ranges::find(CODECS, codecId, &Codec::id);
    return found == std::end(CODECS) ? nullptr : found;
}

}  // namespace Tarnex::MediaFoundation
