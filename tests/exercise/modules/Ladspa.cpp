#include <ladspa.h>

#include "tests/exercise/modules/Fixture.h"

namespace {

using namespace Fixture;  // NOLINT(google-build-using-namespace)

struct Instance {
    Gain gain;
    LADSPA_Data* ports[3];  // input, output, gain
};

LADSPA_Handle Instantiate(const LADSPA_Descriptor* /*descriptor*/, unsigned long /*rate*/) {
    At("create");
    return Is("null") ? nullptr : new Instance();
}

void Connect(LADSPA_Handle self, unsigned long port, LADSPA_Data* data) {
    static_cast<Instance*>(self)->ports[port] = data;
}

void Run(LADSPA_Handle self, unsigned long frames) {
    auto& instance = *static_cast<Instance*>(self);
    instance.gain.value = *instance.ports[2];
    instance.gain.Process(instance.ports[0], instance.ports[1], frames);
}

const LADSPA_PortDescriptor PORTS[]{LADSPA_PORT_INPUT | LADSPA_PORT_AUDIO,
                                    LADSPA_PORT_OUTPUT | LADSPA_PORT_AUDIO,
                                    LADSPA_PORT_INPUT | LADSPA_PORT_CONTROL};
const char* const NAMES[]{"input", "output", "gain"};
constexpr LADSPA_PortRangeHintDescriptor BOUNDED =
    LADSPA_HINT_BOUNDED_BELOW | LADSPA_HINT_BOUNDED_ABOVE | LADSPA_HINT_DEFAULT_1;
const LADSPA_PortRangeHint HINTS[]{{}, {}, {BOUNDED, 0, MAXIMUM}};

const LADSPA_Descriptor DESCRIPTOR{
    1,
    "gain",
    0,
    "Fixture gain",
    "",
    "",
    3,
    PORTS,
    NAMES,
    HINTS,
    nullptr,
    Instantiate,
    Connect,
    [](LADSPA_Handle self) { static_cast<Instance*>(self)->gain.Activate(); },
    Run,
    nullptr,
    nullptr,
    [](LADSPA_Handle /*self*/) { At("deactivate"); },
    [](LADSPA_Handle self) {
        At("destroy");
        delete static_cast<Instance*>(self);
    }};

}  // namespace

/// The label comes twice.
extern "C" __attribute__((visibility("default"))) const LADSPA_Descriptor* ladspa_descriptor(
    unsigned long index) {
    At("list");
    return index < 2 ? &DESCRIPTOR : nullptr;
}
