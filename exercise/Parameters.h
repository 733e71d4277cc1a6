#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace Tarnex::Exercise {

/// An input that a user turns.
struct Parameter {
    std::string name;
    double minimum = 0;
    double maximum = 1;
    double standard = 0;     ///< its default
    bool isBounded = true;   ///< else it stays at its default
    bool isInteger = false;  ///< whole numbers only; a toggle is 0 or 1
    bool isLogarithmic = false;
    std::vector<double> points = {};  ///< if there are any: no other value is allowed
};

/// A value for each parameter, in their order.
using Values = std::vector<double>;

/// Values that make sense together as a set, with a name for texts.
struct ValueSet {
    std::string name;  ///< "default values", "random values 7"
    Values values;
    bool isDefault = false;
};

/// The same numbers each time for one identifier.
class Random {
public:
    explicit Random(const std::string& identifier);

    /// From 0 to 1, without 1.
    double Next();

private:
    std::mt19937 engine;
};

ValueSet GetDefaults(const std::vector<Parameter>& parameters);

/// All at minimum, all at maximum, and 20 random sets.
std::vector<ValueSet> GetExtremes(const std::vector<Parameter>& parameters, Random random);

/// "gain=0.5, mode=2": the first ones that differ from the default.
std::string Describe(const std::vector<Parameter>& parameters, const Values& values);

}  // namespace Tarnex::Exercise
