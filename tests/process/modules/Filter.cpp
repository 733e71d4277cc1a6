// A LADSPA module with one filter, which does nothing.

#include <ladspa.h>

namespace {

int state;

LADSPA_Handle Instantiate(const LADSPA_Descriptor*, unsigned long) {
    return &state;
}

LADSPA_Descriptor Describe() {
    LADSPA_Descriptor filter{};
    filter.UniqueID = 1;
    filter.Label = "filter";
    filter.Name = "Filter";
    filter.instantiate = Instantiate;
    filter.run = [](LADSPA_Handle, unsigned long) {};
    filter.cleanup = [](LADSPA_Handle) {};
    return filter;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) const LADSPA_Descriptor* ladspa_descriptor(
    unsigned long index) {
    static const LADSPA_Descriptor filter = Describe();
    return index == 0 ? &filter : nullptr;
}
