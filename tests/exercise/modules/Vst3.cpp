#include <algorithm>
#include <string_view>

#include "exercise/vst3/Headers.h"
#include "tests/exercise/modules/Fixture.h"

namespace {

using namespace Fixture;  // NOLINT(google-build-using-namespace)

constexpr v3_tuid CLASS_ID = V3_ID(0x41535341, 0x59455247, 0x41494E00, 0x00000001);

struct Instance;

/// One of the interfaces of an instance: what a host has a pointer to.
template <class Table>
struct Face {
    const Table* table;
    Instance* owner;
};

extern const v3_component_cpp COMPONENT;
extern const v3_audio_processor_cpp PROCESSOR;
extern const v3_edit_controller_cpp CONTROLLER;

/// A component that is its own controller.
struct Instance {
    Face<v3_component_cpp> component{&COMPONENT, this};
    Face<v3_audio_processor_cpp> processor{&PROCESSOR, this};
    Face<v3_edit_controller_cpp> controller{&CONTROLLER, this};
    int references = 1;
    int initialisations = 0;
    Gain gain;
};

Instance& From(void* self) {
    return *static_cast<Face<void>*>(self)->owner;
}

v3_result Query(void* self, const v3_tuid id, void** object) {
    Instance& instance = From(self);
    *object = v3_tuid_match(id, v3_component_iid)         ? static_cast<void*>(&instance.component)
              : v3_tuid_match(id, v3_audio_processor_iid) ? &instance.processor
              : v3_tuid_match(id, v3_edit_controller_iid) ? static_cast<void*>(&instance.controller)
                                                          : nullptr;
    instance.references += *object == nullptr ? 0 : 1;
    return *object == nullptr ? V3_NO_INTERFACE : V3_OK;
}

std::uint32_t AddReference(void* self) {
    return static_cast<std::uint32_t>(++From(self).references);
}

std::uint32_t Release(void* self) {
    Instance& instance = From(self);
    if (--instance.references != 0) {
        return static_cast<std::uint32_t>(instance.references);
    }
    At("destroy");
    delete &instance;
    return 0;
}

constexpr v3_funknown UNKNOWN{Query, AddReference, Release};

/// A host that initialises or terminates it twice gets an error, and a crash.
constexpr v3_plugin_base BASE{
    [](void* self, v3_funknown** host) {
        const bool isFirst = ++From(self).initialisations == 1 && host != nullptr;
        return v3_result(isFirst ? V3_OK : V3_INVALID_ARG);
    },
    [](void* self) {
        return v3_result(--From(self).initialisations == 0 ? V3_OK : (std::abort(), V3_OK));
    }};

v3_result GetBus(void* /*self*/, std::int32_t type, std::int32_t direction, std::int32_t /*index*/,
                 v3_bus_info* info) {
    *info = {type, direction, 1, {}, V3_MAIN, V3_DEFAULT_ACTIVE};
    return V3_OK;
}

v3_result SetActive(void* self, v3_bool isActive) {
    isActive ? From(self).gain.Activate() : At("deactivate");
    return V3_OK;
}

v3_result SetState(void* self, v3_bstream** stream) {
    float value = 0;
    std::int32_t read = 0;
    v3_cpp_obj(stream)->read(stream, &value, sizeof value, &read);
    From(self).gain.value = Is("forgetful") ? 1 : value;
    return read == sizeof value ? V3_OK : V3_INVALID_ARG;
}

v3_result GetState(void* self, v3_bstream** stream) {
    return v3_cpp_obj(stream)->write(stream, &From(self).gain.value, sizeof(float), nullptr);
}

const v3_component_cpp COMPONENT{
    UNKNOWN,
    BASE,
    {[](void*, v3_tuid) { return v3_result(V3_FALSE); },
     [](void*, std::int32_t) { return v3_result(V3_NOT_IMPLEMENTED); },
     [](void*, std::int32_t type, std::int32_t) { return type == V3_AUDIO ? 1 : 0; }, GetBus,
     [](void*, v3_routing_info*, v3_routing_info*) { return v3_result(V3_NOT_IMPLEMENTED); },
     [](void*, std::int32_t, std::int32_t, std::int32_t, v3_bool) { return v3_result(V3_OK); },
     SetActive, SetState, GetState}};

void TakeValue(Gain& gain, v3_param_changes** changes) {
    if (v3_cpp_obj(changes)->get_param_count(changes) == 0) {
        return;
    }
    auto** const queue = v3_cpp_obj(changes)->get_param_data(changes, 0);
    std::int32_t offset = 0;
    double value = 0;
    v3_cpp_obj(queue)->get_point(queue, 0, &offset, &value);
    gain.value = static_cast<float>(value) * MAXIMUM;
}

v3_result Process(void* self, v3_process_data* data) {
    Gain& gain = From(self).gain;
    TakeValue(gain, data->input_params);
    gain.Process(data->inputs[0].channel_buffers_32[0], data->outputs[0].channel_buffers_32[0],
                 static_cast<std::size_t>(data->nframes));
    return Is("error") ? V3_INTERNAL_ERR : V3_OK;
}

const v3_audio_processor_cpp PROCESSOR{
    UNKNOWN,
    {[](void*, v3_speaker_arrangement*, std::int32_t, v3_speaker_arrangement*, std::int32_t) {
         return v3_result(V3_FALSE);
     },
     [](void*, std::int32_t, std::int32_t, v3_speaker_arrangement*) { return v3_result(V3_FALSE); },
     [](void*, std::int32_t size) { return v3_result(size == V3_SAMPLE_32 ? V3_OK : V3_FALSE); },
     [](void*) { return 0U; }, [](void*, v3_process_setup*) { return v3_result(V3_OK); },
     [](void*, v3_bool) { return v3_result(V3_NOT_IMPLEMENTED); }, Process,
     [](void*) { return 0U; }}};

v3_result GetParameter(void* /*self*/, std::int32_t /*index*/, v3_param_info* info) {
    *info = {};
    std::ranges::copy(std::u16string_view(u"gain"), info->title);
    info->param_id = 7;
    info->default_normalised_value = 1 / MAXIMUM;
    info->flags = V3_PARAM_CAN_AUTOMATE;
    return V3_OK;
}

const v3_edit_controller_cpp CONTROLLER{
    UNKNOWN,
    BASE,
    {SetState, [](void*, v3_bstream**) { return v3_result(V3_OK); },
     [](void*, v3_bstream**) { return v3_result(V3_OK); }, [](void*) { return 1; }, GetParameter,
     [](void*, v3_param_id, double, v3_str_128) { return v3_result(V3_NOT_IMPLEMENTED); },
     [](void*, v3_param_id, std::int16_t*, double*) { return v3_result(V3_NOT_IMPLEMENTED); },
     [](void*, v3_param_id, double value) { return value * MAXIMUM; },
     [](void*, v3_param_id, double value) { return value / MAXIMUM; },
     [](void* self, v3_param_id) { return double(From(self).gain.value / MAXIMUM); },
     [](void*, v3_param_id, double) { return v3_result(V3_OK); },
     [](void*, v3_component_handler**) { return v3_result(V3_OK); },
     [](void*, const char*) -> v3_plugin_view** { return nullptr; }}};

v3_result Create(void* /*self*/, const v3_tuid /*classId*/, const v3_tuid /*id*/, void** object) {
    At("create");
    *object = Is("null") ? nullptr : &(new Instance())->component;
    return V3_OK;
}

struct {
    v3_funknown unknown{[](void*, const v3_tuid, void**) { return v3_result(V3_NO_INTERFACE); },
                        [](void*) { return 1U; }, [](void*) { return 1U; }};
    v3_plugin_factory factory{[](void*, v3_factory_info*) { return v3_result(V3_OK); },
                              [](void*) { return 1; },
                              [](void*, std::int32_t, v3_class_info* info) {
                                  *info = {{}, 0x7FFFFFFF, "Audio Module Class", "Fixture gain"};
                                  std::ranges::copy(CLASS_ID, info->class_id);
                                  return v3_result(V3_OK);
                              },
                              Create};
} const FACTORY;

}  // namespace

extern "C" __attribute__((visibility("default"))) bool ModuleEntry(void* /*library*/) {
    return true;
}

extern "C" __attribute__((visibility("default"))) const void* GetPluginFactory() {
    static const void* const factory = &FACTORY;
    return &factory;
}
