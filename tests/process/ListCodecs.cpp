// Lists libavcodec's codecs without our code: a line "decoder ID" or "encoder ID" for each audio or
// video codec.

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <cstdio>
#include <string>

int main() {
    const AVCodecDescriptor* descriptor = nullptr;
    while ((descriptor = avcodec_descriptor_next(descriptor)) != nullptr) {
        if (descriptor->type != AVMEDIA_TYPE_VIDEO && descriptor->type != AVMEDIA_TYPE_AUDIO) {
            continue;
        }
        std::string name = descriptor->id == AV_CODEC_ID_HEVC ? "h265" : descriptor->name;
        std::transform(name.begin(), name.end(), name.begin(), ::toupper);
        if (avcodec_find_decoder(descriptor->id) != nullptr) {
            std::printf("decoder CODEC_ID_%s\n", name.c_str());
        }
        if (avcodec_find_encoder(descriptor->id) != nullptr) {
            std::printf("encoder CODEC_ID_%s\n", name.c_str());
        }
    }
    return 0;
}
