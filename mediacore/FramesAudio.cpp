#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "core/media/FrameTiming.h"
#include "core/support/Exception.h"

namespace Tarnex::Proc {
namespace {

constexpr std::int64_t MILLISECONDS = 1000;

/// Minutes of sound, far below where sizes in bytes overflow.
constexpr int MAX_BLOCKS = 1024;

/// 1 ms at least, or a source that counts by it would never come to its end.
std::int64_t LengthOf(std::size_t samples, int rate) {
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(samples) * MILLISECONDS / rate);
}

class FrameAudio : public FrameTiming<IFrameAudio> {
public:
    FrameAudio(const SampleInfo& info, std::size_t count)
        : FrameTiming(LengthOf(count, info.rate)),
          sampleInfo(info),
          count(count),
          samples(std::make_unique<std::uint8_t[]>(count * static_cast<std::size_t>(info.layout) *
                                                   sizeof(std::int16_t))) {}

    SampleInfo GetSampleInfo() const override { return sampleInfo; }
    std::size_t GetSampleCount() const override { return count; }
    std::uint8_t* GetSamples() const override { return samples.get(); }

private:
    SampleInfo sampleInfo;
    std::size_t count;
    std::unique_ptr<std::uint8_t[]> samples;
};

bool IsKnown(ChannelLayout layout) {
    return layout == ChannelLayout::Mono || layout == ChannelLayout::Stereo;
}

class FactoryDataAudio : public RefCounted<IFactoryDataAudio> {
public:
    Pointer<IFrameAudio> CreateFrame(const SampleInfo& info, int blocks) override {
        if (info.format != SampleFormats::S16 || !IsKnown(info.layout) || info.rate < 1) {
            throw Exception(fmt::format(
                "No audio frames of sample format {}, channel layout {}, rate {}",
                static_cast<int>(info.format), static_cast<int>(info.layout), info.rate));
        }
        if (blocks < 1 || blocks > MAX_BLOCKS) {
            throw Exception(fmt::format("No audio frames of {} blocks", blocks));
        }
        return new FrameAudio(info, static_cast<std::size_t>(blocks) * SAMPLES_PER_BLOCK);
    }
};

}  // namespace

Pointer<IFactoryDataAudio> CreateFactoryDataAudioFF() {
    return new FactoryDataAudio();
}

}  // namespace Tarnex::Proc
