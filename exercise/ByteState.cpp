#include "exercise/ByteState.h"

#include <fmt/format.h>

#include <cmath>

namespace Tarnex::Exercise {
namespace {

/// Of a parameter's range: what text with five digits loses.
constexpr double ROUNDING = 1e-4;

}  // namespace

std::string ByteState::Compare(const State& other) const {
    const auto& restored = dynamic_cast<const ByteState&>(other);
    for (std::size_t i = 0; i < values.size() && i < restored.values.size(); ++i) {
        const Parameter& parameter = parameters[i];
        const double range = parameter.maximum - parameter.minimum;
        if (std::abs(values[i] - restored.values[i]) > ROUNDING * std::abs(range)) {
            return fmt::format("{} was {} and is {}", parameter.name, values[i],
                               restored.values[i]);
        }
    }
    return bytes == restored.bytes ? ""
                                   : fmt::format("{} bytes were saved first, then {} that differ",
                                                 bytes.size(), restored.bytes.size());
}

}  // namespace Tarnex::Exercise
