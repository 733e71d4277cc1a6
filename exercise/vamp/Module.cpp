#include <fmt/format.h>

#include <array>

#include "exercise/Chance.h"
#include "exercise/Library.h"
#include "exercise/Plugin.h"
#include "exercise/vamp/Analyser.h"

namespace Tarnex::Exercise {
namespace {

constexpr int BLOCKS = 4;  // of each sound
constexpr int OFTEN = 10;
constexpr std::array SOUNDS{Sound::Silence, Sound::Tone, Sound::Noise};
constexpr std::array STRONG_SOUNDS{Sound::Impulse, Sound::FullScale, Sound::Denormal, Sound::Noise};
constexpr std::array<float, 4> RATES{22050, 44100, 96000, 192000};  // Hz
constexpr std::array<std::size_t, 4> BLOCK_SIZES{256, 512, 2048, 8192};
constexpr std::array GUARDS{Guard::After, Guard::Before};

template <class Sounds>
void Play(Analyser& analyser, const Sounds& sounds, const std::string& context) {
    for (const Sound sound : sounds) {
        for (int block = 0; block < BLOCKS; ++block) {
            analyser.Process(sound, context);
        }
    }
    analyser.GetRemaining();
}

void RequireInitialised(bool isInitialised) {
    if (!isInitialised) {
        throw Failure("refuses what it prefers: " + GetLastStep());
    }
}

void ExerciseOnce(const VampPluginDescriptor& descriptor) {
    Analyser analyser(descriptor, {});
    RequireInitialised(analyser.Initialise());
    Play(analyser, SOUNDS, "");
    analyser.Close();
}

/// What it may refuse, without a fault.
void TrySetting(const VampPluginDescriptor& descriptor, AnalyserSetting setting, Guard guard) {
    Analyser analyser(descriptor, setting);
    if (analyser.Initialise(guard)) {
        Play(analyser, STRONG_SOUNDS, fmt::format("{} Hz, {}", setting.rate, ToString(guard)));
    }
    analyser.Close();
}

void TryValues(const VampPluginDescriptor& descriptor, const ValueSet& set) {
    Analyser analyser(descriptor, {});
    analyser.SetValues(set.values);
    if (analyser.Initialise(Guard::After)) {
        Play(analyser, STRONG_SOUNDS, set.name);
    }
    analyser.Close();
}

/// Returns the features of the sound, or those that come for the same sound after a reset.
std::string Analyse(const VampPluginDescriptor& descriptor, bool isReset) {
    Analyser analyser(descriptor, {});
    RequireInitialised(analyser.Initialise());
    Play(analyser, SOUNDS, "");
    if (isReset) {
        analyser.Reset();
        Play(analyser, SOUNDS, "after reset");
    }
    std::string features = analyser.GetFeatures();
    analyser.Close();
    return features;
}

void CompareReset(const VampPluginDescriptor& descriptor) {
    const std::string features = Analyse(descriptor, false);
    if (Analyse(descriptor, false) != features) {
        Remark("its features differ each time, for the same sound");
        return;
    }
    if (Analyse(descriptor, true) != features) {
        throw Failure("the same sound gives other features after reset");
    }
}

std::string AnalyseInTurn(const VampPluginDescriptor& descriptor) {
    Analyser first(descriptor, {});
    Analyser second(descriptor, {});
    RequireInitialised(first.Initialise());
    RequireInitialised(second.Initialise());
    for (const Sound sound : SOUNDS) {
        for (int block = 0; block < BLOCKS; ++block) {
            first.Process(sound, "first of two instances");
            second.Process(Sound::FullScale, "second of two instances");
        }
    }
    first.GetRemaining();
    second.Close();
    first.Close();
    return first.GetFeatures();
}

void CompareInstances(const VampPluginDescriptor& descriptor) {
    const std::string alone = Analyse(descriptor, false);
    if (AnalyseInTurn(descriptor) == alone) {
        return;
    }
    ChangeChance();
    if (Analyse(descriptor, false) == alone && AnalyseInTurn(descriptor) != alone) {
        throw Failure(
            "two instances disturb each other: the features of one differ while the "
            "other works in between");
    }
}

void StressSettings(const VampPluginDescriptor& descriptor, std::size_t maxChannels) {
    for (const Guard guard : GUARDS) {
        TrySetting(descriptor, {}, guard);
        for (const float rate : RATES) {
            TrySetting(descriptor, {.rate = rate}, guard);
        }
        for (const std::size_t block : BLOCK_SIZES) {
            TrySetting(descriptor, {.block = block}, guard);
        }
    }
    TrySetting(descriptor, {.channels = std::min<std::size_t>(maxChannels, 8)}, Guard::After);
}

void StressAnalyser(const VampPluginDescriptor& descriptor) {
    Analyser analyser(descriptor, {});
    const auto parameters = analyser.GetParameters();
    const std::size_t maxChannels = analyser.GetMaxChannels();
    analyser.Close();
    StressSettings(descriptor, maxChannels);
    for (const ValueSet& set : GetExtremes(parameters, Random(descriptor.identifier))) {
        TryValues(descriptor, set);
    }
    CompareReset(descriptor);
    CompareInstances(descriptor);
    for (int i = 0; i < OFTEN; ++i) {
        TrySetting(descriptor, {}, Guard::None);
    }
}

class VampPlugin : public Plugin {
public:
    explicit VampPlugin(const VampPluginDescriptor& descriptor) : descriptor(descriptor) {}

    std::string GetTitle() const override {
        return descriptor.name == nullptr ? "" : descriptor.name;
    }

    void Exercise(Depth depth) override {
        ExerciseOnce(descriptor);
        if (depth == Depth::Stress) {
            StressAnalyser(descriptor);
        }
    }

private:
    const VampPluginDescriptor& descriptor;
};

class VampModule : public PluginModule {
public:
    explicit VampModule(const Library& library)
        : describe(library.Get<decltype(vampGetPluginDescriptor)>("vampGetPluginDescriptor")) {}

    std::vector<std::string> List() override {
        std::vector<std::string> ids;
        while (const auto* descriptor =
                   describe(VAMP_API_VERSION, static_cast<unsigned>(ids.size()))) {
            ids.emplace_back(descriptor->identifier);
        }
        return ids;
    }

    std::unique_ptr<Plugin> Open(std::size_t index) override {
        return std::make_unique<VampPlugin>(
            *describe(VAMP_API_VERSION, static_cast<unsigned>(index)));
    }

private:
    decltype(vampGetPluginDescriptor)* describe;
};

}  // namespace

std::unique_ptr<PluginModule> LoadVamp(const ModuleRequest& module) {
    return std::make_unique<VampModule>(Library(module.path));
}

}  // namespace Tarnex::Exercise
