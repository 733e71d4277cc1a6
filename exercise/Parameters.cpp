#include "exercise/Parameters.h"

#include <fmt/format.h>

#include <cmath>

namespace Tarnex::Exercise {
namespace {

constexpr int RANDOM_SETS = 20;
constexpr std::size_t LONGEST_DESCRIPTION = 400;  // bytes

/// The seed is this constant and the identifier.
constexpr std::uint32_t SEED = 20260131;

/// Known for all standard libraries, unlike std::hash: FNV-1a.
std::uint32_t Hash(const std::string& text) {
    std::uint32_t hash = 2166136261U;
    for (const char character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
    }
    return hash;
}

/// `share` from 0, the minimum, to 1, the maximum.
double At(const Parameter& parameter, double share) {
    if (!parameter.isBounded) {
        return parameter.standard;
    }
    if (!parameter.points.empty()) {
        const auto count = static_cast<double>(parameter.points.size());
        return parameter.points[static_cast<std::size_t>(std::min(share * count, count - 1))];
    }
    const double low = parameter.minimum;
    const double high = parameter.maximum;
    if (parameter.isInteger) {
        return std::min(std::floor(low + share * (high - low + 1)), std::floor(high));
    }
    if (parameter.isLogarithmic && low > 0 && high > 0) {
        return low * std::pow(high / low, share);
    }
    return low + share * (high - low);
}

template <class Share>
ValueSet MakeSet(const std::vector<Parameter>& parameters, std::string name, Share share) {
    ValueSet set{std::move(name), {}};
    for (const Parameter& parameter : parameters) {
        set.values.push_back(At(parameter, share()));
    }
    return set;
}

}  // namespace

Random::Random(const std::string& identifier) : engine(SEED ^ Hash(identifier)) {}

double Random::Next() {
    constexpr double RANGE = 4294967296.0;  // of the engine
    return static_cast<double>(engine()) / RANGE;
}

ValueSet GetDefaults(const std::vector<Parameter>& parameters) {
    ValueSet set{"default values", {}, true};
    for (const Parameter& parameter : parameters) {
        set.values.push_back(parameter.standard);
    }
    return set;
}

std::vector<ValueSet> GetExtremes(const std::vector<Parameter>& parameters, Random random) {
    std::vector<ValueSet> sets;
    if (parameters.empty()) {
        return sets;
    }
    sets.push_back(MakeSet(parameters, "all values at minimum", [] { return 0.0; }));
    sets.push_back(MakeSet(parameters, "all values at maximum", [] { return 1.0; }));
    for (int set = 1; set <= RANDOM_SETS; ++set) {
        sets.push_back(MakeSet(parameters, fmt::format("random values {}", set),
                               [&] { return random.Next(); }));
    }
    return sets;
}

std::string Describe(const std::vector<Parameter>& parameters, const Values& values) {
    std::string text;
    for (std::size_t i = 0; i < values.size() && text.size() < LONGEST_DESCRIPTION; ++i) {
        if (values[i] != parameters[i].standard) {
            text +=
                fmt::format("{}{}={:.6g}", text.empty() ? "" : ", ", parameters[i].name, values[i]);
        }
    }
    return text;
}

}  // namespace Tarnex::Exercise
