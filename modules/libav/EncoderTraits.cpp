#include "modules/libav/EncoderTraits.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "modules/libav/Parameters.h"

namespace Tarnex::Libav {
namespace {

constexpr char NVENC_FASTEST[] = "preset=p1 tune=ull";

/// The header of a TTA file, without its lengths and checksum.
void CompleteTta(AVCodecParameters& parameters) {
    std::uint8_t header[22] = {'T', 'T', 'A', '1', 1, 0};
    const auto put = [&](int at, int bytes, int value) {
        for (int i = 0; i < bytes; ++i) {
            header[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
    };
    put(6, 2, parameters.ch_layout.nb_channels);
    put(8, 2, parameters.bits_per_raw_sample);
    put(10, 4, parameters.sample_rate);
    SetExtraData(parameters, header, std::size(header));
}

/// Flags, then four bytes with the version of the bitstream.
void CompleteRv10(AVCodecParameters& parameters) {
    constexpr std::uint8_t VERSION[] = {0, 0, 0, 0, 0x10, 0, 0, 0};
    SetExtraData(parameters, VERSION, std::size(VERSION));
}

void CompleteRv20(AVCodecParameters& parameters) {
    constexpr std::uint8_t VERSION[] = {0, 0, 0, 0, 0x20, 0x10, 0x30, 0x01};
    SetExtraData(parameters, VERSION, std::size(VERSION));
}

void CompleteBitpacked(AVCodecParameters& parameters) {
    parameters.codec_tag = MKTAG('U', 'Y', 'V', 'Y');
    parameters.bits_per_coded_sample = 20;
}

/// Describes a packet of one slice that begins at the packet's first byte.
std::string PrefixRv(const AVCodecParameters&) {
    return {0, 1, 0, 0, 0, 0, 0, 0, 0};
}

/// The header of a grey image: cards of 80 characters. A parser removes the first of 36 cards.
std::string PrefixFits(const AVCodecParameters& parameters) {
    constexpr std::size_t CARD = 80;
    std::string header;
    for (const std::string& card :
         {std::string("BITPIX  = 8"), std::string("NAXIS   = 2"),
          "NAXIS1  = " + std::to_string(parameters.width),
          "NAXIS2  = " + std::to_string(parameters.height), std::string("END")}) {
        header += card + std::string(CARD - card.size(), ' ');
    }
    header.resize(35 * CARD, ' ');
    return header;
}

constexpr EncoderTraits TRAITS[] = {
    {.name = "adpcm_ima_amv", .sampleRate = 22050, .channels = 1},
    {.name = "av1_nvenc", .fastest = NVENC_FASTEST},
    {.name = "avui", .width = 720, .height = 576},
    {.name = "bitpacked", .complete = CompleteBitpacked},
    // The size of its files: a large picture takes as long as all other encoders together.
    {.name = "cinepak",
     .fastest = "max_extra_cb_iterations=0 min_strips=32 max_strips=32",
     .width = 320,
     .height = 240},
    {.name = "dnxhd", .options = "b=120M", .pixelFormat = AV_PIX_FMT_YUV422P},
    {.name = "ffv1", .fastest = "level=4"},  // a packet takes 25 MB instead of 300 MB
    {.name = "fits", .pixelFormat = AV_PIX_FMT_GRAY8, .packetPrefix = PrefixFits},
    {.name = "g723_1", .sampleRate = 8000, .channels = 1},
    {.name = "g726", .sampleRate = 8000, .channels = 1},
    {.name = "g726le", .sampleRate = 8000, .channels = 1},
    {.name = "h261", .width = 352, .height = 288},
    {.name = "h264_nvenc", .fastest = NVENC_FASTEST},
    {.name = "hevc_nvenc", .fastest = NVENC_FASTEST},
    {.name = "jpeg2000", .fastest = "pred=dwt53"},
    {.name = "libaom-av1", .fastest = "usage=realtime cpu-used=8 row-mt=1 lag-in-frames=0"},
    {.name = "libgsm", .sampleRate = 8000, .channels = 1},
    {.name = "libgsm_ms", .sampleRate = 8000, .channels = 1},
    {.name = "libjxl", .fastest = "effort=1"},
    {.name = "libvpx", .fastest = "deadline=realtime cpu-used=16 lag-in-frames=0"},
    {.name = "libvpx-vp9", .fastest = "deadline=realtime cpu-used=8 lag-in-frames=0"},
    {.name = "libx264", .fastest = "preset=ultrafast tune=zerolatency"},
    {.name = "libx265",
     .options = "x265-params=log-level=none:pools=none:frame-threads=1",
     .fastest = "preset=ultrafast tune=zerolatency"},
    {.name = "roq_dpcm", .sampleRate = 22050, .channels = 2},
    {.name = "roqvideo", .width = 512, .height = 256},
    {.name = "rv10",
     .width = 352,
     .height = 288,
     .packetPrefix = PrefixRv,
     .complete = CompleteRv10},
    {.name = "rv20", .packetPrefix = PrefixRv, .complete = CompleteRv20},
    {.name = "smc", .pixelFormat = AV_PIX_FMT_PAL8},
    {.name = "snow", .fastest = "pred=dwt53"},
    {.name = "tta", .complete = CompleteTta},
    {.name = "vbn", .pixelFormat = AV_PIX_FMT_RGBA},
    {.name = "wrapped_avframe", .packetFlags = AV_PKT_FLAG_TRUSTED},
    {.name = "xface", .width = 48, .height = 48},
};

}  // namespace

const EncoderTraits& GetTraits(const AVCodec& encoder) {
    static constexpr EncoderTraits PLAIN;
    const auto* found =
        std::find_if(std::begin(TRAITS), std::end(TRAITS),
                     [&](const EncoderTraits& traits) { return traits.name == encoder.name; });
    return found == std::end(TRAITS) ? PLAIN : *found;
}

}  // namespace Tarnex::Libav
