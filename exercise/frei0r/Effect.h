#pragma once

#include <frei0r.h>

#include <string>
#include <vector>

#include "exercise/Buffer.h"
#include "exercise/Library.h"
#include "exercise/Parameters.h"

namespace Tarnex::Exercise {

/// The entry points of an effect that is initialised, and what it says of itself.
struct Frei0rEntry {
    f0r_plugin_info_t info{};
    std::vector<f0r_param_info_t> parameters;
    decltype(f0r_construct)* construct = nullptr;
    decltype(f0r_destruct)* destruct = nullptr;
    decltype(f0r_set_param_value)* setValue = nullptr;
    decltype(f0r_get_param_value)* getValue = nullptr;
    decltype(f0r_update)* update = nullptr;    ///< of sources and filters
    decltype(f0r_update2)* update2 = nullptr;  ///< of mixers
};

/// Initialises the effect, which its interface allows once a process.
Frei0rEntry ReadFrei0rEntry(const Library& library);

struct PictureSize {
    unsigned width = 0;
    unsigned height = 0;
};

/// An effect that is constructed for one size.
class Frei0rEffect {
public:
    Frei0rEffect(const Frei0rEntry& entry, PictureSize size, Guard guard);

    /// The parts of all parameters that have a range, from 0 to 1: the three of a colour, the two
    /// of a position. Texts aren't set.
    std::vector<Parameter> GetParameters() const;
    void SetValues(const Values& values);

    /// The next picture of the moving content. `context` is for the step.
    void Update(const std::string& context);

    void Destruct();

    /// A checksum over all pictures that came out.
    std::uint64_t GetSum() const { return sum; }

private:
    const Frei0rEntry& entry;
    PictureSize size;
    f0r_instance_t instance;
    Buffer first, second, third, output;
    unsigned number = 0;
    std::uint64_t sum = 0;
};

void ExerciseFrei0r(const Frei0rEntry& entry);
void StressFrei0r(const Frei0rEntry& entry, const std::string& id);

}  // namespace Tarnex::Exercise
