#include <array>

#include "exercise/AudioPlugin.h"
#include "exercise/Player.h"

namespace Tarnex::Exercise {
namespace {

constexpr std::array<std::size_t, 4> BLOCKS{1024, 1, 333, 4096};  // frames
constexpr std::array SOUNDS{Sound::Silence, Sound::Tone, Sound::Noise};

/// Returns the checksum of the output.
std::uint64_t PlayAll(AudioInstance& instance, Player& player) {
    instance.Activate();
    player.Restart();
    for (const Sound sound : SOUNDS) {
        for (const std::size_t frames : BLOCKS) {
            player.Play(sound, frames);
        }
    }
    instance.Deactivate();
    return player.GetSum();
}

void ExerciseOnce(AudioPlugin& plugin) {
    const Setting setting;
    const auto instance = plugin.Create(setting);
    instance->SetValues(GetDefaults(instance->GetShape().parameters).values);
    Player player(*instance, setting.longest);
    const std::uint64_t first = PlayAll(*instance, player);
    player.SetContext("activated again");
    const std::uint64_t second = PlayAll(*instance, player);
    if (first != second && !instance->GetShape().mayDiffer) {
        Remark("its output differs for the same sound once it is activated again");
    }
    instance->Close();
}

}  // namespace

void AudioPlugin::Exercise(Depth depth) {
    ExerciseOnce(*this);
    if (depth == Depth::Stress) {
        Stress(*this);
    }
}

}  // namespace Tarnex::Exercise
