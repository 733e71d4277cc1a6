#include "exercise/vst3/Instance.h"

#include <fmt/format.h>

#include <algorithm>

#include "exercise/Allocations.h"
#include "exercise/ByteState.h"
#include "exercise/Records.h"
#include "exercise/vst3/Host.h"
#include "exercise/vst3/Stream.h"

namespace Tarnex::Exercise {
namespace {

constexpr std::size_t MOST_OUTPUT_CHANGES = 4096;

/// Only what is ASCII is kept; the rest becomes "?".
std::string ToText(const std::int16_t* text) {
    std::string result;
    for (std::size_t i = 0; i < std::size(v3_str_128{}) && text[i] != 0; ++i) {
        result += text[i] > 0 && text[i] < 0x7F ? static_cast<char>(text[i]) : '?';
    }
    return result;
}

/// Values of this interface go from 0 to 1, in equal steps if there are any.
Parameter ToParameter(const v3_param_info& info) {
    Parameter parameter{.name = ToText(info.title), .standard = info.default_normalised_value};
    constexpr std::int32_t MOST_STEPS = 1000;
    for (std::int32_t step = 0;
         info.step_count > 0 && info.step_count <= MOST_STEPS && step <= info.step_count; ++step) {
        parameter.points.push_back(static_cast<double>(step) / info.step_count);
    }
    return parameter;
}

void RequireOk(v3_result result, const char* call) {
    if (result != V3_OK) {
        throw Failure(fmt::format("{} returns {}: {}", call, result, GetLastStep()));
    }
}

/// Some plugins return that they don't implement a call that they needn't implement.
void Require(v3_result result, const char* call) {
    if (result != V3_NOT_IMPLEMENTED && result != V3_FALSE) {
        RequireOk(result, call);
    }
}

std::vector<v3_audio_bus_buffers> MakeBuffers(const std::vector<std::int32_t>& buses,
                                              float** channels) {
    std::vector<v3_audio_bus_buffers> buffers;
    for (const std::int32_t count : buses) {
        v3_audio_bus_buffers bus{};
        bus.num_channels = count;
        bus.channel_buffers_32 = channels;
        buffers.push_back(bus);
        channels += count;
    }
    return buffers;
}

}  // namespace

Vst3Instance::Vst3Instance(const Vst3Factory& factory, const v3_tuid classId,
                           const Setting& setting)
    : setting(setting) {
    CreateComponent(factory, classId);
    CreateController(factory);
    if (controller) {
        Connect();
        TellController();
        ReadParameters();
    }
    ReadBuses();
    changes = std::make_unique<Vst3Changes>(parameters.size());
    outputChanges = std::make_unique<Vst3Changes>(MOST_OUTPUT_CHANGES);
}

void Vst3Instance::CreateComponent(const Vst3Factory& factory, const v3_tuid classId) {
    Step("createInstance, component");
    void* created = nullptr;
    const v3_result result =
        factory.Call(&v3_plugin_factory::create_instance, classId, v3_component_iid, &created);
    if (result != V3_OK || created == nullptr) {
        throw Failure(fmt::format("createInstance gives nothing ({})", result));
    }
    component = Vst3Pointer<v3_component>(created);
    Step("initialize, component");
    RequireOk(v3_cpp_obj_initialize(component.Get(), GetVst3Host()), "initialize");
    Step("queryInterface, processor");
    processor = component.Query<v3_audio_processor>(v3_audio_processor_iid);
    if (!processor) {
        throw Failure("the component has no audio processor");
    }
}

void Vst3Instance::CreateController(const Vst3Factory& factory) {
    Step("queryInterface, controller");
    controller = component.Query<v3_edit_controller>(v3_edit_controller_iid);
    if (!controller) {
        v3_tuid id{};
        Step("getControllerClassId");
        if (component.Call(&v3_component::get_controller_class_id, id) != V3_OK) {
            return;
        }
        void* created = nullptr;
        Step("createInstance, controller");
        const v3_result result =
            factory.Call(&v3_plugin_factory::create_instance, id, v3_edit_controller_iid, &created);
        if (result != V3_OK || created == nullptr) {
            throw Failure(fmt::format("createInstance gives no controller ({})", result));
        }
        controller = Vst3Pointer<v3_edit_controller>(created);
        isControllerApart = true;
        Step("initialize, controller");
        RequireOk(v3_cpp_obj_initialize(controller.Get(), GetVst3Host()), "initialize");
    }
    Step("setComponentHandler");
    controller.Call(&v3_edit_controller::set_component_handler, GetVst3Handler());
}

void Vst3Instance::Connect() {
    if (!isControllerApart) {
        return;
    }
    Step("connect");
    componentPoint = component.Query<v3_connection_point>(v3_connection_point_iid);
    controllerPoint = controller.Query<v3_connection_point>(v3_connection_point_iid);
    if (componentPoint && controllerPoint) {
        componentPoint.Call(&v3_connection_point::connect, controllerPoint.Get());
        controllerPoint.Call(&v3_connection_point::connect, componentPoint.Get());
    }
}

void Vst3Instance::Disconnect() {
    Step("disconnect");
    if (componentPoint && controllerPoint) {
        componentPoint.Call(&v3_connection_point::disconnect, controllerPoint.Get());
        controllerPoint.Call(&v3_connection_point::disconnect, componentPoint.Get());
    }
    componentPoint.Release();
    controllerPoint.Release();
}

/// A controller learns from the component's state where it begins.
void Vst3Instance::TellController() {
    Vst3Stream stream;
    Step("getState, component");
    if (component.Call(&v3_component::get_state, stream.AsInterface()) != V3_OK) {
        return;
    }
    Vst3Stream copy(stream.GetBytes());
    Step("setComponentState");
    controller.Call(&v3_edit_controller::set_component_state, copy.AsInterface());
}

void Vst3Instance::ReadParameters() {
    Step("getParameterInfo");
    const std::int32_t count = controller.Call(&v3_edit_controller::get_parameter_count);
    for (std::int32_t index = 0; index < count; ++index) {
        v3_param_info info{};
        RequireOk(controller.Call(&v3_edit_controller::get_parameter_info, index, &info),
                  "getParameterInfo");
        if ((info.flags & (V3_PARAM_READ_ONLY | V3_PARAM_PROGRAM_CHANGE)) == 0) {
            parameters.push_back(info);
            shape.parameters.push_back(ToParameter(info));
        }
    }
}

void Vst3Instance::ReadBuses() {
    Step("getBusInfo");
    inputs = ReadBuses(V3_INPUT);
    outputs = ReadBuses(V3_OUTPUT);
    for (const std::int32_t channels : inputs) {
        shape.inputs += static_cast<std::size_t>(channels);
    }
    for (const std::int32_t channels : outputs) {
        shape.outputs += static_cast<std::size_t>(channels);
    }
    shape.inPlace = inputs.size() == 1 && outputs.size() == 1;
    shape.takesNotes = component.Call(&v3_component::get_bus_count, std::int32_t(V3_EVENT),
                                      std::int32_t(V3_INPUT)) > 0;
}

std::vector<std::int32_t> Vst3Instance::ReadBuses(std::int32_t direction) {
    std::vector<std::int32_t> channels;
    const std::int32_t count =
        component.Call(&v3_component::get_bus_count, std::int32_t(V3_AUDIO), direction);
    for (std::int32_t index = 0; index < count; ++index) {
        v3_bus_info info{};
        RequireOk(component.Call(&v3_component::get_bus_info, std::int32_t(V3_AUDIO), direction,
                                 index, &info),
                  "getBusInfo");
        channels.push_back(info.channel_count);
    }
    return channels;
}

void Vst3Instance::ActivateBuses(bool isActive) {
    Step("activateBus");
    for (const std::int32_t type : {V3_AUDIO, V3_EVENT}) {
        for (const std::int32_t direction : {V3_INPUT, V3_OUTPUT}) {
            const std::int32_t count =
                component.Call(&v3_component::get_bus_count, type, direction);
            for (std::int32_t index = 0; index < count; ++index) {
                component.Call(&v3_component::activate_bus, type, direction, index,
                               static_cast<v3_bool>(isActive));
            }
        }
    }
}

void Vst3Instance::SetValues(const Values& wanted) {
    values = wanted;
    hasNewValues = true;
    Step("setParamNormalized");
    for (std::size_t i = 0; i < values.size(); ++i) {
        controller.Call(&v3_edit_controller::set_parameter_normalised, parameters[i].param_id,
                        values[i]);
    }
}

void Vst3Instance::Activate() {
    Step("canProcessSampleSize");
    RequireOk(
        processor.Call(&v3_audio_processor::can_process_sample_size, std::int32_t(V3_SAMPLE_32)),
        "canProcessSampleSize");
    v3_process_setup setup{V3_REALTIME, V3_SAMPLE_32, static_cast<std::int32_t>(setting.longest),
                           setting.rate};
    Step("setupProcessing");
    RequireOk(processor.Call(&v3_audio_processor::setup_processing, &setup), "setupProcessing");
    ActivateBuses(true);
    Step("setActive, true");
    RequireOk(component.Call(&v3_component::set_active, v3_bool(true)), "setActive");
    Step("getLatencySamples");
    processor.Call(&v3_audio_processor::get_latency_samples);
    Step("setProcessing, true");
    Require(processor.Call(&v3_audio_processor::set_processing, v3_bool(true)), "setProcessing");
    time = 0;
}

void Vst3Instance::Process(const Block& block) {
    auto inputChannels = block.inputs;
    auto outputChannels = block.outputs;
    auto in = MakeBuffers(inputs, inputChannels.data());
    auto out = MakeBuffers(outputs, outputChannels.data());
    changes->Clear();
    outputChanges->Clear();
    for (std::size_t i = 0; hasNewValues && i < values.size(); ++i) {
        changes->Add(parameters[i].param_id, values[i]);
    }
    hasNewValues = false;
    events.Clear();
    for (const Note& note : block.notes) {
        events.Add(note);
    }
    v3_process_context context{};
    context.sample_rate = setting.rate;
    context.project_time_in_samples = time;
    v3_process_data data{V3_REALTIME,
                         V3_SAMPLE_32,
                         static_cast<std::int32_t>(block.frames),
                         static_cast<std::int32_t>(in.size()),
                         static_cast<std::int32_t>(out.size()),
                         in.data(),
                         out.data(),
                         changes->AsInterface(),
                         outputChanges->AsInterface(),
                         events.AsInterface(),
                         outputEvents.AsInterface(),
                         &context};
    v3_result result = V3_OK;
    {
        const AllocationWatch watch;
        result = processor.Call(&v3_audio_processor::process, &data);
    }
    RequireOk(result, "process");
    time += static_cast<std::int64_t>(block.frames);
}

void Vst3Instance::Deactivate() {
    Step("setProcessing, false");
    Require(processor.Call(&v3_audio_processor::set_processing, v3_bool(false)), "setProcessing");
    Step("setActive, false");
    RequireOk(component.Call(&v3_component::set_active, v3_bool(false)), "setActive");
    ActivateBuses(false);
}

void Vst3Instance::Destroy() {
    if (controller) {
        Disconnect();
        Step("setComponentHandler, none");
        controller.Call(&v3_edit_controller::set_component_handler,
                        static_cast<v3_component_handler**>(nullptr));
    }
    if (isControllerApart) {
        Step("terminate, controller");
        v3_cpp_obj_terminate(controller.Get());
    }
    Step("terminate, component");
    v3_cpp_obj_terminate(component.Get());
    Step("release");
    controller.Release();
    processor.Release();
    component.Release();
}

Values Vst3Instance::GetValues() const {
    Values read;
    for (const v3_param_info& parameter : parameters) {
        read.push_back(
            controller.Call(&v3_edit_controller::get_parameter_normalised, parameter.param_id));
    }
    return read;
}

std::unique_ptr<State> Vst3Instance::Save() {
    Vst3Stream stream;
    Step("getState, component");
    if (component.Call(&v3_component::get_state, stream.AsInterface()) != V3_OK) {
        return nullptr;
    }
    if (stream.GetBytes().empty()) {
        return nullptr;
    }
    auto saved = std::make_unique<ByteState>(shape.parameters);
    saved->bytes = stream.GetBytes();
    Step("getParamNormalized");
    saved->values = GetValues();
    return saved;
}

void Vst3Instance::Restore(const State& state) {
    const std::string& bytes = dynamic_cast<const ByteState&>(state).bytes;
    hasNewValues = false;
    Vst3Stream forComponent(bytes);
    Step("setState, component");
    if (component.Call(&v3_component::set_state, forComponent.AsInterface()) != V3_OK) {
        Remark("setState returns an error for what getState gave");  // hosts go on
    }
    if (controller) {
        Vst3Stream forController(bytes);
        Step("setComponentState");
        controller.Call(&v3_edit_controller::set_component_state, forController.AsInterface());
    }
}

void Vst3Instance::CheckTexts() {
    for (const v3_param_info& parameter : parameters) {
        v3_str_128 text{};
        v3_str_128 again{};
        double value = 0;
        const std::string name = ToText(parameter.title);
        Step("getParamStringByValue, " + name);
        if (controller.Call(&v3_edit_controller::get_parameter_string_for_value, parameter.param_id,
                            parameter.default_normalised_value, text) != V3_OK) {
            continue;
        }
        Step("getParamValueByString, " + name);
        if (controller.Call(&v3_edit_controller::get_parameter_value_for_string, parameter.param_id,
                            text, &value) == V3_OK &&
            controller.Call(&v3_edit_controller::get_parameter_string_for_value, parameter.param_id,
                            value, again) == V3_OK &&
            !std::ranges::equal(text, again)) {
            Remark(fmt::format("the value \"{}\" of {} comes back as \"{}\"", ToText(text), name,
                               ToText(again)));
            return;
        }
    }
}

}  // namespace Tarnex::Exercise
