#pragma once

#include <deque>

#include "exercise/AudioPlugin.h"
#include "exercise/Buffer.h"
#include "exercise/Records.h"
#include "exercise/Sounds.h"

namespace Tarnex::Exercise {

/// An output holds NaN or infinity.
class BadOutput : public Failure {
public:
    using Failure::Failure;
};

/// Gives an instance block after block and checks what comes out.
class Player {
public:
    Player(AudioInstance& instance, std::size_t longest, Guard guard = Guard::None);

    /// What the texts say of the blocks that follow, such as "random values 7".
    void SetContext(std::string text) { context = std::move(text); }

    /// Writes the outputs over the inputs from now on.
    void ShareBuffers() { isShared = true; }

    /// A block of a sound that continues from block to block. Plays blocks of the only allowed
    /// length instead if the instance takes no other. Throws `BadOutput`; `Failure` if the padding
    /// changed.
    void Play(Sound sound, std::size_t frames, std::vector<Note> notes = {});

    /// Begins again: block 1, the start of the sound.
    void Restart();

    /// Keeps all output from now on.
    void KeepOutput() { isKeeping = true; }
    const std::vector<float>& GetOutput() const { return kept; }

    /// A checksum over all output since the start.
    std::uint64_t GetSum() const { return sum; }

private:
    void Prepare(Sound sound);
    void CheckOutputs(Sound sound);
    void CheckPadding(const std::deque<Buffer>& buffers, const char* direction) const;

    AudioInstance& instance;
    std::deque<Buffer> inputs;
    std::deque<Buffer> outputs;
    Guard guard;
    bool isShared = false;
    bool isKeeping = false;
    std::vector<float> kept;
    std::string context;
    Block block;
    std::size_t number = 0;    // of the block
    std::size_t position = 0;  // of its first frame
    std::uint64_t sum = 0;
};

}  // namespace Tarnex::Exercise
