#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Tarnex::Exercise {

enum class Sound { Silence, Tone, Noise, Impulse, FullScale, Denormal };

const char* ToString(Sound sound);

/// Writes `frames` samples of a sound that began `start` frames ago at 48 kHz. Channels differ.
void Fill(float* samples, std::size_t frames, Sound sound, std::size_t start, std::size_t channel);

/// What a block of output holds.
struct SampleCheck {
    std::size_t firstBad = 0;  ///< the frame of the first NaN or infinity, if there is one
    bool isBad = false;
    bool isNan = false;  ///< what it is; else infinity
    bool hasDenormals = false;
};

SampleCheck Check(const float* samples, std::size_t frames);

/// Continues a checksum over samples; equal bits give equal sums.
std::uint64_t Sum(std::uint64_t sum, const float* samples, std::size_t frames);

}  // namespace Tarnex::Exercise
