#include <lv2/core/lv2.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>

#include <cstring>

#include "tests/exercise/modules/Fixture.h"

namespace {

using namespace Fixture;  // NOLINT(google-build-using-namespace)

struct Instance {
    Gain gain;
    float* ports[3];  // input, output, gain
    const LV2_URID_Map* map;
    int saved = 0;  // a property beside the ports: how many blocks it saw
};

LV2_Handle Instantiate(const LV2_Descriptor* /*descriptor*/, double /*rate*/,
                       const char* /*bundle*/, const LV2_Feature* const* features) {
    At("create");
    if (Is("null")) {
        return nullptr;
    }
    auto* const instance = new Instance();
    for (; *features != nullptr; ++features) {
        if (std::strcmp((*features)->URI, LV2_URID__map) == 0) {
            instance->map = static_cast<const LV2_URID_Map*>((*features)->data);
        }
    }
    return instance;
}

void Run(LV2_Handle self, std::uint32_t frames) {
    auto& instance = *static_cast<Instance*>(self);
    instance.gain.value = *instance.ports[2];
    instance.gain.Process(instance.ports[0], instance.ports[1], frames);
    ++instance.saved;
}

LV2_URID Map(const Instance& instance, const char* uri) {
    return instance.map->map(instance.map->handle, uri);
}

LV2_State_Status Save(LV2_Handle self, LV2_State_Store_Function store, LV2_State_Handle handle,
                      std::uint32_t /*flags*/, const LV2_Feature* const* /*features*/) {
    auto& instance = *static_cast<Instance*>(self);
    return store(handle, Map(instance, "urn:assayer:saved"), &instance.saved, sizeof instance.saved,
                 Map(instance, "http://lv2plug.in/ns/ext/atom#Int"), LV2_STATE_IS_POD);
}

LV2_State_Status Restore(LV2_Handle self, LV2_State_Retrieve_Function retrieve,
                         LV2_State_Handle handle, std::uint32_t /*flags*/,
                         const LV2_Feature* const* /*features*/) {
    auto& instance = *static_cast<Instance*>(self);
    std::size_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t flags = 0;
    const void* value = retrieve(handle, Map(instance, "urn:assayer:saved"), &size, &type, &flags);
    if (value != nullptr && !Is("forgetful")) {
        std::memcpy(&instance.saved, value, sizeof instance.saved);
    }
    return LV2_STATE_SUCCESS;
}

const void* GetExtension(const char* uri) {
    static const LV2_State_Interface state{Save, Restore};
    return std::strcmp(uri, LV2_STATE__interface) == 0 ? &state : nullptr;
}

const LV2_Descriptor DESCRIPTOR{
    "urn:assayer:gain",
    Instantiate,
    [](LV2_Handle self, std::uint32_t port, void* data) {
        static_cast<Instance*>(self)->ports[port] = static_cast<float*>(data);
    },
    [](LV2_Handle self) { static_cast<Instance*>(self)->gain.Activate(); },
    Run,
    [](LV2_Handle /*self*/) { At("deactivate"); },
    [](LV2_Handle self) {
        At("destroy");
        delete static_cast<Instance*>(self);
    },
    GetExtension};

}  // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
    return index == 0 ? &DESCRIPTOR : nullptr;
}
