#include <fmt/format.h>

#include <array>

#include "exercise/Stage.h"

namespace Tarnex::Exercise {
namespace {

constexpr std::size_t LONGEST = 8192;                                       // frames
constexpr std::array<double, 5> RATES{22050, 44100, 88200, 96000, 192000};  // Hz
constexpr std::array<std::size_t, 8> BLOCKS{16, 1, 127, 1024, 2, 333, LONGEST, 64};
constexpr std::array GUARDS{Guard::After, Guard::Before};
constexpr int OFTEN = 10;

void PlayValues(Player& player) {
    player.Play(Sound::Noise, 333);
    player.Play(Sound::Impulse, 64);
    player.Play(Sound::FullScale, 1024);
    player.Play(Sound::Denormal, 1);
}

/// What is bad only with odd values may be a filter out of its range. It counts if the instance
/// never recovers from it.
void Recover(Stage& stage, const ValueSet& set, const BadOutput& bad) {
    const std::string text =
        fmt::format("{} ({})", bad.what(), Describe(stage.GetParameters(), set.values));
    stage.instance->Deactivate();
    stage.Set(GetDefaults(stage.GetParameters()));
    stage.instance->Activate();
    try {
        PlayValues(stage.player);
    } catch (const BadOutput&) {
        throw Failure(text + "; still so with default values, activated again");
    }
    Remark(text + "; good with default values, activated again");
}

/// The values change while the instance is active, as in a host that automates them.
void SweepValues(AudioPlugin& plugin, Guard guard) {
    Stage stage(plugin, {.longest = LONGEST}, guard);
    stage.instance->Activate();
    PlayValues(stage.player);
    for (const ValueSet& set : GetExtremes(stage.GetParameters(), Random(plugin.GetId()))) {
        stage.Set(set);
        try {
            PlayValues(stage.player);
        } catch (const BadOutput& bad) {
            Recover(stage, set, bad);
        }
    }
    stage.End();
}

void SweepRates(AudioPlugin& plugin, Guard guard) {
    for (const double rate : RATES) {
        Stage stage(plugin, {rate, LONGEST}, guard);
        stage.player.SetContext(fmt::format("{} Hz", rate));
        stage.instance->Activate();
        for (const std::size_t frames : BLOCKS) {
            stage.player.Play(Sound::Noise, frames);
        }
        stage.player.Play(Sound::Impulse, BLOCKS.back());
        stage.player.Play(Sound::Silence, BLOCKS.back());
        stage.End();
    }
}

/// The third block ends what wasn't begun, the first ends what it begins.
const std::array<std::vector<Note>, 4> NOTES{{
    {{0, 60, true}, {10, 64, true}, {500, 60, false}, {1023, 64, false}},
    {{0, 60, false}, {0, 61, true}, {0, 61, true}, {100, 127, true}, {200, 0, true}},
    {{0, 127, false}, {0, 0, false}, {1023, 61, false}, {1023, 99, false}},
    {},
}};

void PlayNotes(AudioPlugin& plugin) {
    Stage stage(plugin);
    stage.player.SetContext("notes");
    stage.instance->Activate();
    for (const auto& notes : NOTES) {
        stage.player.Play(Sound::Silence, 1024, notes);
    }
    stage.End();
}

/// Returns what the plugin has.
Shape CreateOften(AudioPlugin& plugin) {
    Shape shape;
    for (int i = 0; i < OFTEN; ++i) {
        Stage stage(plugin);
        stage.instance->Activate();
        stage.player.Play(Sound::Noise, 64);
        shape = stage.instance->GetShape();
        stage.End();
    }
    return shape;
}

/// On an instance that is closed without having worked, as hosts do it that only look.
void CheckTexts(AudioPlugin& plugin) {
    Stage stage(plugin);
    stage.instance->CheckTexts();
    stage.instance->Close();
}

}  // namespace

void Stress(AudioPlugin& plugin) {
    for (const Guard guard : GUARDS) {
        SweepValues(plugin, guard);
        SweepRates(plugin, guard);
    }
    const Shape shape = CreateOften(plugin);
    if (!shape.mayDiffer) {
        CompareInstances(plugin);
    }
    if (shape.inPlace && shape.inputs != 0 && shape.outputs != 0) {
        CompareInPlace(plugin);
    }
    if (shape.takesNotes) {
        PlayNotes(plugin);
    }
    CheckTexts(plugin);
    CompareStates(plugin);
}

}  // namespace Tarnex::Exercise
