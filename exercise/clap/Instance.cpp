#include "exercise/clap/Instance.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstring>

#include "exercise/Allocations.h"
#include "exercise/ByteState.h"
#include "exercise/Records.h"

namespace Tarnex::Exercise {
namespace {

constexpr std::uint32_t TEXT_SIZE = 256;  // bytes

Parameter ToParameter(const clap_param_info_t& info) {
    return {.name = std::string(info.name, strnlen(info.name, sizeof info.name)),
            .minimum = info.min_value,
            .maximum = info.max_value,
            .standard = info.default_value,
            .isBounded = std::isfinite(info.min_value) && std::isfinite(info.max_value),
            .isInteger = (info.flags & CLAP_PARAM_IS_STEPPED) != 0};
}

/// Gives the buffers of one direction their channels.
template <class Port>
std::vector<clap_audio_buffer_t> MakeBuffers(const std::vector<Port>& ports, float** channels) {
    std::vector<clap_audio_buffer_t> buffers;
    for (const Port& port : ports) {
        buffers.push_back({channels, nullptr, port.channels, 0, 0});
        channels += port.channels;
    }
    return buffers;
}

}  // namespace

ClapInstance::ClapInstance(const clap_plugin_factory_t& factory, const char* id,
                           const Setting& setting)
    : setting(setting) {
    Step("create_plugin");
    plugin = factory.create_plugin(&factory, host.Get(), id);
    if (plugin == nullptr) {
        throw Failure("create_plugin gives nothing");
    }
    Step("init");
    if (!plugin->init(plugin)) {
        throw Failure("init refuses");
    }
    host.CallBack(*plugin);
    ReadPorts();
    ReadNotePorts();
    ReadParameters();
}

template <class Extension>
const Extension* ClapInstance::FindExtension(const char* id) const {
    Step(fmt::format("get_extension, {}", id));
    return static_cast<const Extension*>(plugin->get_extension(plugin, id));
}

void ClapInstance::ReadPorts() {
    const auto* const audio = FindExtension<clap_plugin_audio_ports_t>(CLAP_EXT_AUDIO_PORTS);
    if (audio == nullptr) {
        return;
    }
    inputs = ReadPorts(*audio, true);
    outputs = ReadPorts(*audio, false);
    for (const Port& port : inputs) {
        shape.inputs += port.channels;
        shape.inPlace = shape.inPlace || port.isInPlace;
    }
    for (const Port& port : outputs) {
        shape.outputs += port.channels;
    }
    // In place is for the pair of main ports; others keep their own memory, which we don't mix.
    shape.inPlace = shape.inPlace && inputs.size() == 1 && outputs.size() == 1;
}

std::vector<ClapInstance::Port> ClapInstance::ReadPorts(const clap_plugin_audio_ports_t& audio,
                                                        bool isInput) {
    Step("audio_ports.get");
    std::vector<Port> ports;
    for (std::uint32_t index = 0; index < audio.count(plugin, isInput); ++index) {
        clap_audio_port_info_t info{};
        if (!audio.get(plugin, index, isInput, &info)) {
            throw Failure(fmt::format("audio_ports.get refuses {} port {}",
                                      isInput ? "input" : "output", index));
        }
        ports.push_back({info.channel_count, info.in_place_pair != CLAP_INVALID_ID});
    }
    return ports;
}

void ClapInstance::ReadNotePorts() {
    const auto* const notes = FindExtension<clap_plugin_note_ports_t>(CLAP_EXT_NOTE_PORTS);
    Step("note_ports.get");
    if (notes == nullptr || notes->count(plugin, true) == 0) {
        return;
    }
    clap_note_port_info_t info{};
    if (!notes->get(plugin, 0, true, &info)) {
        throw Failure("note_ports.get refuses input port 0");
    }
    shape.takesNotes = true;
    takesMidi = (info.supported_dialects & CLAP_NOTE_DIALECT_CLAP) == 0;
}

void ClapInstance::ReadParameters() {
    params = FindExtension<clap_plugin_params_t>(CLAP_EXT_PARAMS);
    if (params == nullptr) {
        return;
    }
    Step("params.get_info");
    for (std::uint32_t index = 0; index < params->count(plugin); ++index) {
        clap_param_info_t info{};
        if (!params->get_info(plugin, index, &info)) {
            throw Failure(fmt::format("params.get_info refuses parameter {}", index));
        }
        if ((info.flags & CLAP_PARAM_IS_READONLY) == 0) {
            parameters.push_back(info);
            shape.parameters.push_back(ToParameter(info));
        }
    }
}

void ClapInstance::SetValues(const Values& wanted) {
    values = wanted;
    hasNewValues = true;
}

void ClapInstance::Activate() {
    Step("activate");
    if (!plugin->activate(plugin, setting.rate, 1, static_cast<std::uint32_t>(setting.longest))) {
        throw Failure(fmt::format("activate refuses {} Hz", setting.rate));
    }
    if (const auto* latency = FindExtension<clap_plugin_latency_t>(CLAP_EXT_LATENCY)) {
        Step("latency.get");
        latency->get(plugin);
    }
    host.CallBack(*plugin);
    time = 0;
    Step("start_processing");
    DoAudio([&] {
        if (!plugin->start_processing(plugin)) {
            throw Failure("start_processing refuses");
        }
    });
}

void ClapInstance::PrepareEvents(const Block& block) {
    events.Clear();
    for (std::size_t i = 0; hasNewValues && i < values.size(); ++i) {
        events.AddValue(parameters[i].id, parameters[i].cookie, values[i]);
    }
    hasNewValues = false;
    for (const Note& note : block.notes) {
        events.AddNote(note, takesMidi);
    }
}

void ClapInstance::Process(const Block& block) {
    auto inputChannels = block.inputs;
    auto outputChannels = block.outputs;
    const auto in = MakeBuffers(inputs, inputChannels.data());
    auto out = MakeBuffers(outputs, outputChannels.data());
    PrepareEvents(block);
    const clap_process_t process{time,
                                 static_cast<std::uint32_t>(block.frames),
                                 nullptr,
                                 in.data(),
                                 out.data(),
                                 static_cast<std::uint32_t>(in.size()),
                                 static_cast<std::uint32_t>(out.size()),
                                 events.GetInput(),
                                 events.GetOutput()};
    DoAudio([&] {
        const AllocationWatch watch;
        if (plugin->process(plugin, &process) == CLAP_PROCESS_ERROR) {
            throw Failure("process returns an error: " + GetLastStep());
        }
    });
    time += static_cast<std::int64_t>(block.frames);
    host.CallBack(*plugin);
}

void ClapInstance::Deactivate() {
    Step("stop_processing");
    DoAudio([&] { plugin->stop_processing(plugin); });
    host.FireTimers(*plugin);
    Step("deactivate");
    plugin->deactivate(plugin);
    host.CallBack(*plugin);
}

void ClapInstance::Destroy() {
    Step("destroy");
    plugin->destroy(plugin);
}

std::vector<double> ClapInstance::GetValues() const {
    std::vector<double> read;
    for (const clap_param_info_t& parameter : parameters) {
        double value = 0;
        if (!params->get_value(plugin, parameter.id, &value)) {
            throw Failure(fmt::format("params.get_value refuses parameter {}", parameter.name));
        }
        read.push_back(value);
    }
    return read;
}

std::unique_ptr<State> ClapInstance::Save() {
    const auto* const state = FindExtension<clap_plugin_state_t>(CLAP_EXT_STATE);
    if (state == nullptr) {
        return nullptr;
    }
    auto saved = std::make_unique<ByteState>(shape.parameters);
    Step("params.get_value");
    saved->values = GetValues();
    const clap_ostream_t stream{
        &saved->bytes, [](const clap_ostream_t* self, const void* data, std::uint64_t size) {
            static_cast<std::string*>(self->ctx)->append(static_cast<const char*>(data), size);
            return static_cast<std::int64_t>(size);
        }};
    Step("state.save");
    if (!state->save(plugin, &stream)) {
        throw Failure("state.save refuses");
    }
    host.CallBack(*plugin);
    return saved;
}

void ClapInstance::Restore(const State& state) {
    const auto* const extension = FindExtension<clap_plugin_state_t>(CLAP_EXT_STATE);
    std::string_view rest = dynamic_cast<const ByteState&>(state).bytes;
    const clap_istream_t stream{
        &rest, [](const clap_istream_t* self, void* data, std::uint64_t size) {
            auto& left = *static_cast<std::string_view*>(self->ctx);
            const std::size_t read = left.copy(static_cast<char*>(data), size);
            left.remove_prefix(read);
            return static_cast<std::int64_t>(read);
        }};
    hasNewValues = false;
    Step("state.load");
    if (!extension->load(plugin, &stream)) {
        throw Failure("state.load refuses what state.save gave");
    }
    host.CallBack(*plugin);
}

void ClapInstance::CheckTexts() {
    for (const clap_param_info_t& parameter : parameters) {
        std::array<char, TEXT_SIZE> text{};
        std::array<char, TEXT_SIZE> again{};
        double value = 0;
        Step(fmt::format("params.value_to_text, {}", parameter.name));
        if (!params->value_to_text(plugin, parameter.id, parameter.default_value, text.data(),
                                   TEXT_SIZE)) {
            continue;
        }
        Step(fmt::format("params.text_to_value, {}", parameter.name));
        if (params->text_to_value(plugin, parameter.id, text.data(), &value) &&
            params->value_to_text(plugin, parameter.id, value, again.data(), TEXT_SIZE) &&
            std::strcmp(text.data(), again.data()) != 0) {
            Remark(fmt::format("the value \"{}\" of {} comes back as \"{}\"", text.data(),
                               parameter.name, again.data()));
            return;
        }
    }
}

}  // namespace Tarnex::Exercise
