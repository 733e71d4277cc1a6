#include "modules/MediaFoundationCodecs/CodecTable.h"

#include <algorithm>

namespace Tarnex::MediaFoundation {

namespace {

using Proc::MediaKind;

constexpr char VPX_FASTEST[] = "deadline=1 cpu-used=8 lag-in-frames=0";

// Two encoders are missing on purpose: openh264enc (H.264) prints to standard error, and mpeg2enc
// (MPEG-2) ends the process if it gets only one frame.
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
    // Without alpha: otherwise the framework chooses decoders for streams with alpha.
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
     .tail = {"\x00\x00\x01\xB7", 4}},  // the sequence end code
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
