#pragma once

#include "exercise/AudioPlugin.h"
#include "exercise/Player.h"

namespace Tarnex::Exercise {

/// An instance with its default values and what plays on it.
struct Stage {
    explicit Stage(AudioPlugin& plugin, const Setting& setting = {}, Guard guard = Guard::None)
        : instance(plugin.Create(setting)), player(*instance, setting.longest, guard) {
        Set(GetDefaults(GetParameters()));
    }

    const std::vector<Parameter>& GetParameters() const { return instance->GetShape().parameters; }

    void Set(const ValueSet& set) {
        instance->SetValues(set.values);
        player.SetContext(set.name);
    }

    void End() {
        instance->Deactivate();
        instance->Close();
    }

    AudioHandle instance;
    Player player;
};

/// Whether instances disturb each other, and whether one works in place. Parts of `Stress`.
void CompareInstances(AudioPlugin& plugin);
void CompareInPlace(AudioPlugin& plugin);

/// Whether a state comes back in another instance. A part of `Stress`.
void CompareStates(AudioPlugin& plugin);

}  // namespace Tarnex::Exercise
