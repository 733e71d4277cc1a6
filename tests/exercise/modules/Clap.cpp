#include <clap/entry.h>
#include <clap/ext/audio-ports.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>
#include <clap/ext/thread-check.h>
#include <clap/plugin-factory.h>

#include <cstring>

#include "tests/exercise/modules/Fixture.h"

namespace {

using namespace Fixture;  // NOLINT(google-build-using-namespace)

const clap_plugin_descriptor_t DESCRIPTOR{
    CLAP_VERSION, "assayer.gain", "Fixture gain", "", "", "", "", "1", "", nullptr};

struct Instance {
    clap_plugin_t plugin;
    const clap_host_t* host;
    Gain gain;
};

Instance& From(const clap_plugin_t* plugin) {
    return *static_cast<Instance*>(plugin->plugin_data);
}

/// A host that calls on the wrong thread is told so by an exception.
void RequireThread(const clap_plugin_t* plugin, bool isAudio) {
    const clap_host_t* host = From(plugin).host;
    const auto* check = static_cast<const clap_host_thread_check_t*>(
        host->get_extension(host, CLAP_EXT_THREAD_CHECK));
    if (check->is_audio_thread(host) != isAudio || check->is_main_thread(host) == isAudio) {
        throw std::runtime_error("wrong thread");
    }
}

const clap_plugin_audio_ports_t AUDIO_PORTS{
    [](const clap_plugin_t*, bool) { return 1U; },
    [](const clap_plugin_t*, std::uint32_t, bool, clap_audio_port_info_t* info) {
        *info = {0, "main", CLAP_AUDIO_PORT_IS_MAIN, 1, CLAP_PORT_MONO, 0U};
        return true;
    }};

bool GetValue(const clap_plugin_t* plugin, clap_id /*id*/, double* value) {
    *value = From(plugin).gain.value;
    return true;
}

/// "wordy": the text loses what it says.
bool ToText(const clap_plugin_t* /*plugin*/, clap_id /*id*/, double value, char* text,
            std::uint32_t size) {
    std::snprintf(text, size, "%f", value);
    return true;
}

bool FromText(const clap_plugin_t* /*plugin*/, clap_id /*id*/, const char* text, double* value) {
    *value = Is("wordy") ? 0.25 : std::atof(text);
    return true;
}

const clap_plugin_params_t PARAMS{
    [](const clap_plugin_t*) { return 1U; },
    [](const clap_plugin_t*, std::uint32_t, clap_param_info_t* info) {
        *info = {7, CLAP_PARAM_IS_AUTOMATABLE, nullptr, "gain", "", 0, MAXIMUM, 1};
        return true;
    },
    GetValue,
    ToText,
    FromText,
    [](const clap_plugin_t*, const clap_input_events_t*, const clap_output_events_t*) {}};

const clap_plugin_state_t STATE{
    [](const clap_plugin_t* plugin, const clap_ostream_t* stream) {
        const float value = From(plugin).gain.value;
        return stream->write(stream, &value, sizeof value) == sizeof value;
    },
    [](const clap_plugin_t* plugin, const clap_istream_t* stream) {
        float value = 0;
        const bool isRead = stream->read(stream, &value, sizeof value) == sizeof value;
        From(plugin).gain.value = Is("forgetful") ? 1 : value;
        return isRead;
    }};

const void* GetExtension(const clap_plugin_t* /*plugin*/, const char* id) {
    return std::strcmp(id, CLAP_EXT_AUDIO_PORTS) == 0 ? static_cast<const void*>(&AUDIO_PORTS)
           : std::strcmp(id, CLAP_EXT_PARAMS) == 0    ? &PARAMS
           : std::strcmp(id, CLAP_EXT_STATE) == 0     ? static_cast<const void*>(&STATE)
                                                      : nullptr;
}

clap_process_status Process(const clap_plugin_t* plugin, const clap_process_t* process) {
    RequireThread(plugin, true);
    Gain& gain = From(plugin).gain;
    for (std::uint32_t i = 0; i < process->in_events->size(process->in_events); ++i) {
        const auto* event = process->in_events->get(process->in_events, i);
        if (event->type == CLAP_EVENT_PARAM_VALUE) {
            gain.value =
                static_cast<float>(reinterpret_cast<const clap_event_param_value_t*>(event)->value);
        }
    }
    gain.Process(process->audio_inputs[0].data32[0], process->audio_outputs[0].data32[0],
                 process->frames_count);
    return Is("error") ? CLAP_PROCESS_ERROR : CLAP_PROCESS_CONTINUE;
}

const clap_plugin_t* Create(const clap_plugin_factory_t* /*factory*/, const clap_host_t* host,
                            const char* /*id*/) {
    At("create");
    if (Is("null")) {
        return nullptr;
    }
    auto* const instance = new Instance{};
    instance->host = host;
    instance->plugin = {&DESCRIPTOR,
                        instance,
                        [](const clap_plugin_t*) { return true; },
                        [](const clap_plugin_t* plugin) {
                            At("destroy");
                            delete &From(plugin);
                        },
                        [](const clap_plugin_t* plugin, double, std::uint32_t, std::uint32_t) {
                            RequireThread(plugin, false);
                            From(plugin).gain.Activate();
                            return true;
                        },
                        [](const clap_plugin_t* plugin) {
                            RequireThread(plugin, false);
                            At("deactivate");
                        },
                        [](const clap_plugin_t* plugin) {
                            RequireThread(plugin, true);
                            return true;
                        },
                        [](const clap_plugin_t* plugin) { RequireThread(plugin, true); },
                        [](const clap_plugin_t*) {},
                        Process,
                        GetExtension,
                        [](const clap_plugin_t*) {}};
    return &instance->plugin;
}

const clap_plugin_factory_t FACTORY{
    [](const clap_plugin_factory_t*) { return 1U; },
    [](const clap_plugin_factory_t*, std::uint32_t) { return &DESCRIPTOR; }, Create};

}  // namespace

const clap_plugin_entry_t clap_entry{CLAP_VERSION, [](const char*) { return true; }, [] {},
                                     [](const char*) -> const void* { return &FACTORY; }};
