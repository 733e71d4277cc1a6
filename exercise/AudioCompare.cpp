#include <algorithm>
#include <array>
#include <cmath>

#include "exercise/Chance.h"
#include "exercise/Stage.h"

namespace Tarnex::Exercise {
namespace {

struct Piece {
    Sound sound;
    std::size_t frames;
};

constexpr std::array<Piece, 3> PIECES{
    {{Sound::Impulse, 64}, {Sound::Noise, 1024}, {Sound::Tone, 333}}};

enum class Way { Apart, InPlace, OtherChance };

/// Other places in memory may give other roundings.
bool IsSame(const std::vector<float>& left, const std::vector<float>& right) {
    constexpr float TOLERANCE = 1e-3F;
    const auto isNear = [](float one, float other) {
        return std::abs(one - other) <= TOLERANCE * std::max(1.0F, std::abs(one));
    };
    return std::ranges::equal(left, right, isNear);
}

/// What one instance makes of the pieces.
std::vector<float> PlayAlone(AudioPlugin& plugin, Way way = Way::Apart) {
    Stage stage(plugin);
    if (way == Way::InPlace) {
        stage.player.ShareBuffers();
        stage.player.SetContext("in place");
    }
    stage.player.KeepOutput();
    if (way == Way::OtherChance) {
        ChangeChance();
    }
    stage.instance->Activate();
    for (const auto& [sound, frames] : PIECES) {
        stage.player.Play(sound, frames);
    }
    stage.End();
    return stage.player.GetOutput();
}

/// The same while another instance works in between, with other values.
std::vector<float> PlayInTurn(AudioPlugin& plugin) {
    Stage first(plugin);
    Stage second(plugin);
    const auto sets = GetExtremes(second.GetParameters(), Random(plugin.GetId()));
    if (!sets.empty()) {
        second.Set(sets.back());
    }
    first.player.SetContext("first of two instances");
    second.player.SetContext("second of two instances");
    first.player.KeepOutput();
    first.instance->Activate();
    second.instance->Activate();
    for (const auto& [sound, frames] : PIECES) {
        first.player.Play(sound, frames);
        try {
            second.player.Play(Sound::FullScale, frames);
        } catch (const BadOutput&) {
            continue;  // the values' fault, which has its own check
        }
    }
    second.End();
    first.End();
    return first.player.GetOutput();
}

}  // namespace

/// Counts only for a plugin whose output is the same each time by itself.
void CompareInstances(AudioPlugin& plugin) {
    const auto alone = PlayAlone(plugin);
    if (IsSame(PlayInTurn(plugin), alone) || !IsSame(PlayAlone(plugin), alone)) {
        return;
    }
    if (!IsSame(PlayAlone(plugin, Way::OtherChance), alone)) {
        Remark("its output is random");
    } else if (!IsSame(PlayInTurn(plugin), alone) && IsSame(PlayAlone(plugin), alone)) {
        throw Failure(
            "two instances disturb each other: the output of one differs while the other works in "
            "between");
    }
}

void CompareInPlace(AudioPlugin& plugin) {
    const auto apart = PlayAlone(plugin);
    if (!IsSame(PlayAlone(plugin, Way::InPlace), apart) && IsSame(PlayAlone(plugin), apart)) {
        Remark("its output differs when it works in place, though its interface allows that");
    }
}

}  // namespace Tarnex::Exercise
