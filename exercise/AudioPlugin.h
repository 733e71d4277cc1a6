#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "exercise/Parameters.h"
#include "exercise/Plugin.h"

namespace Tarnex::Exercise {

inline constexpr double USUAL_RATE = 48000;  // Hz

/// What an instance is told before it works.
struct Setting {
    double rate = USUAL_RATE;
    std::size_t longest = 4096;  ///< the longest block, in frames
};

/// What an instance has. Audio and CV channels are counted alike.
struct Shape {
    std::size_t inputs = 0;
    std::size_t outputs = 0;
    std::vector<Parameter> parameters;
    std::size_t onlyBlock =
        0;                     ///< frames of the only block that it takes; 0: any up to the longest
    bool powersOfTwo = false;  ///< it takes no other block lengths
    bool inPlace = false;      ///< an output may share its memory with an input
    bool mayDiffer = false;    ///< it says that its output doesn't depend on its input alone
    bool takesNotes = false;
    const char* call = "process";  ///< what the interface calls the work on a block
};

struct Note {
    std::uint32_t frame = 0;
    std::uint8_t key = 0;
    bool isOn = false;
};

struct Block {
    std::size_t frames = 0;
    std::vector<float*> inputs;
    std::vector<float*> outputs;
    std::vector<Note> notes;
};

/// What an instance saved of itself.
class State {
public:
    virtual ~State() = default;

    /// What differs in `other`, for people; empty if nothing does.
    virtual std::string Compare(const State& other) const = 0;
};

/// A created plugin. Each call writes its step, but `Process`, whose step the caller knows better.
/// Its destructor frees what is ours and calls nothing of the plugin.
class AudioInstance {
public:
    virtual ~AudioInstance() = default;

    virtual const Shape& GetShape() const = 0;

    /// From the next block on. A value for each parameter.
    virtual void SetValues(const Values& values) = 0;

    virtual void Activate() = 0;
    /// Only while it is active. Counts what the plugin allocates (see `AllocationWatch`).
    virtual void Process(const Block& block) = 0;
    virtual void Deactivate() = 0;

    /// The last call.
    void Close() {
        Destroy();
        isClosed = true;
    }
    bool IsClosed() const { return isClosed; }

    /// Null if it keeps no state. The instance isn't active.
    virtual std::unique_ptr<State> Save() { return nullptr; }
    /// `state` comes from an instance of the same plugin.
    virtual void Restore(const State& state) { static_cast<void>(state); }

    /// Turns values into text and back, if it can do that, and remarks on what doesn't fit.
    virtual void CheckTexts() {}

private:
    virtual void Destroy() = 0;

    bool isClosed = false;
};

/// What a plugin was given stays where it is if the plugin failed: its threads may still use it.
struct DeleteClosed {
    void operator()(AudioInstance* instance) const {
        if (instance->IsClosed()) {
            delete instance;
        }
    }
};
using AudioHandle = std::unique_ptr<AudioInstance, DeleteClosed>;

/// A plugin that works on blocks of sound.
class AudioPlugin : public Plugin {
public:
    void Exercise(Depth depth) final;

    /// Its identifier, from which the random values follow.
    virtual std::string GetId() const = 0;

    virtual AudioHandle Create(const Setting& setting) = 0;
};

/// Depth stress, after depth exercise.
void Stress(AudioPlugin& plugin);

}  // namespace Tarnex::Exercise
