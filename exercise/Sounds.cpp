#include "exercise/Sounds.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numbers>

namespace Tarnex::Exercise {
namespace {

// The parts of a sample of 32 bits (IEEE 754). Looked at as bits, because modules may change how
// the processor treats small numbers, and compilers may assume that there are no odd ones.
constexpr std::uint32_t EXPONENT = 0x7F800000;
constexpr std::uint32_t FRACTION = 0x007FFFFF;

constexpr std::size_t PERIOD = 96;  // frames: 500 Hz at 48 kHz
constexpr float HALF_SCALE = 0.5F;

/// One period of the tone, because the sine costs more than most plugins.
const std::array<float, PERIOD>& GetPeriod() {
    static const auto period = [] {
        std::array<float, PERIOD> samples{};
        for (std::size_t i = 0; i < PERIOD; ++i) {
            const double phase = 2 * std::numbers::pi * static_cast<double>(i) / PERIOD;
            samples[i] = HALF_SCALE * static_cast<float>(std::sin(phase));
        }
        return samples;
    }();
    return period;
}

/// White noise from -0.5 to 0.5: a mix of the position's bits, so that any piece can be made.
float NoiseAt(std::uint32_t position) {
    position ^= position >> 16U;
    position *= 0x7FEB352DU;
    position ^= position >> 15U;
    position *= 0x846CA68BU;
    position ^= position >> 16U;
    return static_cast<float>(position >> 8U) / static_cast<float>(1U << 24U) - HALF_SCALE;
}

float At(Sound sound, std::size_t frame, std::size_t channel) {
    switch (sound) {
        case Sound::Tone:
            return GetPeriod()[(frame + channel * 7) % PERIOD];
        case Sound::Noise:
            return NoiseAt(static_cast<std::uint32_t>(frame + channel * 1000003));
        case Sound::Impulse:
            return frame == 0 ? 1.0F : 0.0F;
        case Sound::FullScale:
            return (frame / (PERIOD / 2) + channel) % 2 == 0 ? 1.0F : -1.0F;
        case Sound::Denormal:
            return frame % 2 == 0 ? 1e-40F : -1e-42F;
        case Sound::Silence:
            break;
    }
    return 0.0F;
}

}  // namespace

const char* ToString(Sound sound) {
    constexpr std::array NAMES{"silence", "tone", "noise", "impulse", "full scale", "denormals"};
    return NAMES.at(static_cast<std::size_t>(sound));
}

void Fill(float* samples, std::size_t frames, Sound sound, std::size_t start, std::size_t channel) {
    if (sound == Sound::Silence) {
        std::fill_n(samples, frames, 0.0F);
        return;
    }
    for (std::size_t i = 0; i < frames; ++i) {
        samples[i] = At(sound, start + i, channel);
    }
}

SampleCheck Check(const float* samples, std::size_t frames) {
    bool isBad = false;
    bool hasDenormals = false;
    for (std::size_t i = 0; i < frames; ++i) {  // without an exit, for the vector unit
        const auto bits = std::bit_cast<std::uint32_t>(samples[i]);
        isBad |= (bits & EXPONENT) == EXPONENT;
        hasDenormals |= (bits & EXPONENT) == 0 && (bits & FRACTION) != 0;
    }
    SampleCheck check{.isBad = isBad, .hasDenormals = hasDenormals};
    if (isBad) {
        const float* bad = std::find_if(samples, samples + frames, [](float sample) {
            return (std::bit_cast<std::uint32_t>(sample) & EXPONENT) == EXPONENT;
        });
        check.firstBad = static_cast<std::size_t>(bad - samples);
        check.isNan = (std::bit_cast<std::uint32_t>(*bad) & FRACTION) != 0;
    }
    return check;
}

std::uint64_t Sum(std::uint64_t sum, const float* samples, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        sum = (sum ^ std::bit_cast<std::uint32_t>(samples[i])) * 0x9E3779B97F4A7C15U;
        sum ^= sum >> 32U;
    }
    return sum;
}

}  // namespace Tarnex::Exercise
