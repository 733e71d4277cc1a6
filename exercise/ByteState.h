#pragma once

#include <string>
#include <vector>

#include "exercise/AudioPlugin.h"

namespace Tarnex::Exercise {

/// A state that a plugin writes as bytes, and the values that its parameters had then.
class ByteState : public State {
public:
    explicit ByteState(std::vector<Parameter> parameters) : parameters(std::move(parameters)) {}

    /// The values first, because they mean something to people. They may differ by rounding.
    std::string Compare(const State& other) const override;

    std::string bytes;
    Values values;

private:
    std::vector<Parameter> parameters;
};

}  // namespace Tarnex::Exercise
