#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "exercise/lv2/Bundle.h"

namespace Tarnex::Exercise {

struct Lv2Port {
    enum class Kind { Signal, Control, Atom, Other };

    std::uint32_t index = 0;
    std::string symbol;
    Kind kind = Kind::Other;  ///< `Signal`: audio or CV
    bool isInput = false;
    bool takesMidi = false;
    std::size_t minimumSize = 0;  ///< in bytes, of an atom port's buffer
    double standard = 0;          ///< of a control
    double minimum = 0;
    double maximum = 0;
    bool isBounded = false;
    bool isInteger = false;
    bool isToggle = false;
    bool isLogarithmic = false;
    bool isPerRate = false;  ///< the bounds, not the default, are shares of the sample rate
    std::vector<double> points = {};
};

/// Reads the plugin's ports. Throws `Unavailable` for a port that has to be connected and whose
/// type we don't know; `Failure` if the data make no sense.
std::vector<Lv2Port> ReadPorts(const Bundle& bundle, const LilvPlugin* plugin);

}  // namespace Tarnex::Exercise
