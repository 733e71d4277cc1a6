// Their declarations export the functions.
extern "C" {
#pragma GCC visibility push(default)
#include <frei0r.h>
#pragma GCC visibility pop
}

#include <algorithm>

#include "tests/exercise/modules/Fixture.h"

namespace {

struct Instance {
    unsigned width, height;
    double value = 1;
};

std::uint32_t& Shared() {
    static std::uint32_t shared = 0;
    return shared;
}

}  // namespace

int f0r_init() {
    return Fixture::Is("null list") ? -1 : 1;
}

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    *info = {"Fixture gain",
             "",
             F0R_PLUGIN_TYPE_FILTER,
             F0R_COLOR_MODEL_RGBA8888,
             FREI0R_MAJOR_VERSION,
             1,
             0,
             1,
             ""};
}

void f0r_get_param_info(f0r_param_info_t* info, int /*index*/) {
    *info = {"gain", F0R_PARAM_DOUBLE, ""};
}

f0r_instance_t f0r_construct(unsigned width, unsigned height) {
    Fixture::At("create");
    Shared() = 0;
    return Fixture::Is("null") ? nullptr : new Instance{width, height};
}

void f0r_destruct(f0r_instance_t self) {
    Fixture::At("destroy");
    delete static_cast<Instance*>(self);
}

void f0r_set_param_value(f0r_instance_t self, f0r_param_t value, int /*index*/) {
    static_cast<Instance*>(self)->value = *static_cast<double*>(value);
}

void f0r_get_param_value(f0r_instance_t self, f0r_param_t value, int /*index*/) {
    *static_cast<double*>(value) = static_cast<Instance*>(self)->value;
}

void f0r_update(f0r_instance_t self, double /*time*/, const std::uint32_t* input,
                std::uint32_t* output) {
    Fixture::At("process");
    const auto& instance = *static_cast<Instance*>(self);
    const std::size_t pixels = std::size_t(instance.width) * instance.height;
    if (Fixture::Is("untouched")) {
        return;
    }
    std::copy_n(input, pixels, output);
    if (Fixture::Is("disturbing")) {
        output[0] = Shared()++;
    }
    if (Fixture::Is("beyond")) {
        output[pixels] = 1;
    }
}
