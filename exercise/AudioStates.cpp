#include <fmt/format.h>

#include "exercise/Stage.h"

namespace Tarnex::Exercise {
namespace {

/// The state of a new instance with these values, taken once a block has carried them to it. Null
/// if the plugin keeps no state, or one that differs each time.
std::unique_ptr<State> SaveWith(AudioPlugin& plugin, const ValueSet& set) {
    Stage stage(plugin);
    stage.Set(set);
    stage.instance->Activate();
    bool isComparable = true;
    try {
        stage.player.Play(Sound::Silence, 1024);
    } catch (const BadOutput&) {
        isComparable = false;  // the values' fault, which has its own check
    }
    stage.instance->Deactivate();
    auto state = stage.instance->Save();
    if (state && isComparable) {
        const auto again = stage.instance->Save();
        isComparable = again && state->Compare(*again).empty();
    }
    stage.instance->Close();
    return isComparable ? std::move(state) : nullptr;
}

std::unique_ptr<State> RestoreAndSave(AudioPlugin& plugin, const State& state) {
    Stage stage(plugin);
    stage.instance->Restore(state);
    stage.instance->Activate();
    stage.instance->Deactivate();
    auto saved = stage.instance->Save();
    stage.instance->Close();
    return saved;
}

void CompareState(AudioPlugin& plugin, const ValueSet& set) {
    const auto state = SaveWith(plugin, set);
    if (!state) {
        return;
    }
    const auto restored = RestoreAndSave(plugin, *state);
    const std::string difference = restored ? state->Compare(*restored) : "nothing is saved";
    if (!difference.empty()) {
        throw Failure(fmt::format("a saved state doesn't come back in a new instance, {}: {}",
                                  set.name, difference));
    }
}

}  // namespace

void CompareStates(AudioPlugin& plugin) {
    Stage stage(plugin);
    const std::vector<Parameter> parameters = stage.GetParameters();
    stage.instance->Close();
    CompareState(plugin, GetDefaults(parameters));
    const auto sets = GetExtremes(parameters, Random(plugin.GetId()));
    if (!sets.empty()) {
        CompareState(plugin, sets.back());
    }
}

}  // namespace Tarnex::Exercise
