#pragma once

#include <cstdint>

namespace Tarnex::Proc {

enum class MediaKind { None = 0, Video = 1, Audio = 2 };

enum class PixFmt {
    Nv12 = 0,     ///< 4:2:0, two planes: Y, and U and V interleaved
    Yuv420p = 3,  ///< 4:2:0, three planes: Y, U, V
};

enum class SampleFormats { S16 = 1 };  ///< interleaved signed 16 bit, native byte order

enum class ChannelLayout { Mono = 1, Stereo = 2 };  ///< the value is the number of channels

/// Code points of ISO/IEC 23091-2. BT.709 is {1, 1, 1}.
struct ColorSpace {
    std::uint32_t primaries;
    std::uint32_t transfer;
    std::uint32_t matrix;
};

/// Size in pixels, and the aspect ratio of one pixel (width to height).
struct FrameInfo {
    int width = 0;
    int height = 0;
    int aspectX = 1;
    int aspectY = 1;
};

struct FrameRate {
    int numerator = 25;
    int denominator = 1;
};

struct SampleInfo {
    SampleFormats format = SampleFormats::S16;
    int rate = 0;  ///< samples per second per channel
    ChannelLayout layout = ChannelLayout::Stereo;

    void Init(SampleFormats newFormat, int newRate, ChannelLayout newLayout) {
        format = newFormat;
        rate = newRate;
        layout = newLayout;
    }
};

}  // namespace Tarnex::Proc
