#include "exercise/Player.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>

#include "exercise/Allocations.h"

namespace Tarnex::Exercise {
namespace {

std::size_t ToAllowed(const Shape& shape, std::size_t frames) {
    if (shape.onlyBlock != 0) {
        return shape.onlyBlock;
    }
    return shape.powersOfTwo ? std::bit_floor(frames) : frames;
}

float* PlaceFloats(Buffer& buffer, std::size_t frames) {
    return reinterpret_cast<float*>(buffer.Place(frames * sizeof(float)));
}

}  // namespace

Player::Player(AudioInstance& instance, std::size_t longest, Guard guard)
    : instance(instance), guard(guard) {
    const Shape& shape = instance.GetShape();
    const std::size_t size = std::max(longest, shape.onlyBlock) * sizeof(float);
    for (std::size_t i = 0; i < shape.inputs; ++i) {
        inputs.emplace_back(guard, size);
    }
    for (std::size_t i = 0; i < shape.outputs; ++i) {
        outputs.emplace_back(guard, size);
    }
}

void Player::Restart() {
    number = 0;
    position = 0;
    sum = 0;
}

void Player::Prepare(Sound sound) {
    block.inputs.clear();
    block.outputs.clear();
    for (Buffer& buffer : inputs) {
        block.inputs.push_back(PlaceFloats(buffer, block.frames));
        Fill(block.inputs.back(), block.frames, sound, position, block.inputs.size() - 1);
    }
    for (Buffer& buffer : outputs) {
        const std::size_t channel = block.outputs.size();
        if (isShared && channel < block.inputs.size()) {
            block.outputs.push_back(block.inputs[channel]);
            continue;
        }
        block.outputs.push_back(PlaceFloats(buffer, block.frames));
        std::fill_n(block.outputs.back(), block.frames, 0.0F);
    }
}

void Player::Play(Sound sound, std::size_t frames, std::vector<Note> notes) {
    block.frames = ToAllowed(instance.GetShape(), frames);
    block.notes = std::move(notes);
    Prepare(sound);
    ++number;
    Step(fmt::format("{}, block {} of {} frames, {}{}{}{}{}", instance.GetShape().call, number,
                     block.frames, ToString(sound), context.empty() ? "" : ", ", context,
                     guard == Guard::None ? "" : ", ", ToString(guard)));
    TakeAllocations();
    instance.Process(block);
    if (TakeAllocations() != 0) {
        Remark("allocates or frees memory while it processes");
    }
    CheckPadding(inputs, "an input");
    CheckPadding(outputs, "an output");
    CheckOutputs(sound);
    position += block.frames;
}

void Player::CheckOutputs(Sound sound) {
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
        const SampleCheck check = Check(block.outputs[channel], block.frames);
        if (check.isBad) {
            throw BadOutput(fmt::format("output {} holds {} from frame {} on: {}", channel + 1,
                                        check.isNan ? "NaN" : "infinity", check.firstBad,
                                        GetLastStep()));
        }
        if (check.hasDenormals && sound != Sound::Denormal) {
            Remark("its output holds denormal numbers");
        }
        sum = Sum(sum, block.outputs[channel], block.frames);
        if (isKeeping) {
            kept.insert(kept.end(), block.outputs[channel], block.outputs[channel] + block.frames);
        }
    }
}

void Player::CheckPadding(const std::deque<Buffer>& buffers, const char* direction) const {
    const bool isWhole =
        guard == Guard::None || std::ranges::all_of(buffers, &Buffer::IsPaddingWhole);
    if (!isWhole) {
        throw Failure(fmt::format("writes beyond the end of {}: {}", direction, GetLastStep()));
    }
}

}  // namespace Tarnex::Exercise
