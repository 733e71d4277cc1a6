// A filter module. LADSPA and LV2 are how many filters it describes in each interface, where it has
// that; the second one lacks an operation. LIBRARY: it describes one by the function for libraries.

#include <ladspa.h>
#include <lv2/core/lv2.h>

#include <cstring>

#define EXPORT extern "C" __attribute__((visibility("default")))

namespace {

template <class Descriptor>
Descriptor Describe(bool hasRun) {
    Descriptor filter{};
    filter.instantiate = [](auto...) -> void* { return nullptr; };
    filter.cleanup = [](void*) {};
    if (hasRun) {
        filter.run = [](void*, auto) {};
    }
    return filter;
}

template <class Descriptor, class Name>
const Descriptor* GetFilter(unsigned long index, unsigned long count, Name name) {
    static Descriptor filters[] = {Describe<Descriptor>(true), Describe<Descriptor>(false)};
    for (Descriptor& filter : filters) {
        filter.*name = "urn:test";
    }
    return index < count ? &filters[index] : nullptr;
}

}  // namespace

#ifdef LADSPA
EXPORT const LADSPA_Descriptor* ladspa_descriptor(unsigned long index) {
    return GetFilter<LADSPA_Descriptor>(index, LADSPA, &LADSPA_Descriptor::Label);
}
#endif
#ifdef LV2
EXPORT const LV2_Descriptor* lv2_descriptor(uint32_t index) {
    return GetFilter<LV2_Descriptor>(index, LV2, &LV2_Descriptor::URI);
}
#endif
#ifdef LIBRARY
EXPORT const LV2_Lib_Descriptor* lv2_lib_descriptor(const char* bundle,
                                                    const LV2_Feature* const* features) {
    static const LV2_Lib_Descriptor library{
        nullptr, sizeof(LV2_Lib_Descriptor), nullptr, [](void*, uint32_t index) {
            return GetFilter<LV2_Descriptor>(index, 1, &LV2_Descriptor::URI);
        }};
    const bool isFolder = bundle[std::strlen(bundle) - 1] == '/';
    return isFolder && *features == nullptr ? &library : nullptr;
}
#endif
