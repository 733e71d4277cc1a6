#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <random>
#include <span>

#include "core/media/FrameTiming.h"
#include "core/support/Exception.h"

namespace Tarnex::Proc {
namespace {

constexpr std::int64_t MILLISECONDS = 1000;

/// Minutes of sound, far below the point where sizes in bytes overflow.
constexpr int MAX_BLOCKS = 1024;

/// At least 1 ms, because a source that counts by frame lengths would never end otherwise.
std::int64_t LengthOf(std::size_t samples, int rate) {
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(samples) * MILLISECONDS / rate);
}

/// In cycles per sample.
constexpr double LOWEST_TONE = 0.005;
constexpr double HIGHEST_TONE = 0.1;

constexpr double LOUDNESS = 6000;
constexpr int NOISE_LEVELS = 256;

/// A rising tone and its third harmonic, with a little noise: work for prediction, transform and
/// entropy coding.
void Play(std::span<std::int16_t> samples, std::size_t channels) {
    std::minstd_rand random;  // defined by the standard, so all machines get the same numbers
    const double rise = (HIGHEST_TONE - LOWEST_TONE) / static_cast<double>(samples.size());
    double phase = 0;
    for (std::size_t i = 0; i < samples.size(); i += channels) {
        phase += 2 * std::numbers::pi * (LOWEST_TONE + rise * static_cast<double>(i));
        for (std::size_t channel = 0; channel < channels; ++channel) {
            // Both channels have the same tone, but different harmonics and noise.
            const double tone =
                std::sin(phase) + std::sin(3 * phase) / (2 + static_cast<double>(channel));
            const int noise = static_cast<int>(random() / 16 % NOISE_LEVELS) - NOISE_LEVELS / 2;
            samples[i + channel] = static_cast<std::int16_t>(LOUDNESS * tone + noise);
        }
    }
}

class FrameAudio : public FrameTiming<IFrameAudio> {
public:
    FrameAudio(const SampleInfo& info, std::size_t count)
        : FrameTiming(LengthOf(count, info.rate)),
          sampleInfo(info),
          count(count),
          samples(std::make_unique_for_overwrite<std::int16_t[]>(
              count * static_cast<std::size_t>(info.layout))) {
        const auto channels = static_cast<std::size_t>(info.layout);
        Play({samples.get(), count * channels}, channels);
    }

    SampleInfo GetSampleInfo() const override { return sampleInfo; }
    std::size_t GetSampleCount() const override { return count; }
    std::uint8_t* GetSamples() const override {
        return reinterpret_cast<std::uint8_t*>(samples.get());
    }

private:
    SampleInfo sampleInfo;
    std::size_t count;
    std::unique_ptr<std::int16_t[]> samples;
};

bool IsKnown(ChannelLayout layout) {
    return layout == ChannelLayout::Mono || layout == ChannelLayout::Stereo;
}

class FactoryDataAudio : public RefCounted<IFactoryDataAudio> {
public:
    Pointer<IFrameAudio> CreateFrame(const SampleInfo& info, int blocks) override {
        if (info.format != SampleFormats::S16 || !IsKnown(info.layout) || info.rate < 1) {
            throw Exception(fmt::format(
                "Can't create audio frames of sample format {}, channel layout {}, rate {}",
                static_cast<int>(info.format), static_cast<int>(info.layout), info.rate));
        }
        if (blocks < 1 || blocks > MAX_BLOCKS) {
            throw Exception(fmt::format("Can't create audio frames of {} blocks", blocks));
        }
        return new FrameAudio(info, static_cast<std::size_t>(blocks) * SAMPLES_PER_BLOCK);
    }
};

}  // namespace

Pointer<IFactoryDataAudio> CreateFactoryDataAudioFF() {
    return new FactoryDataAudio();
}

}  // namespace Tarnex::Proc
