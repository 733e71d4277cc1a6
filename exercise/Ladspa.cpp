#include <fmt/format.h>
#include <ladspa.h>

#include <algorithm>
#include <cmath>

#include "exercise/Allocations.h"
#include "exercise/AudioPlugin.h"
#include "exercise/Library.h"

namespace Tarnex::Exercise {
namespace {

/// As ladspa.h describes the hint: a mix of the bounds, by their logarithms if it is logarithmic.
double Mix(double low, double high, double share, bool isLogarithmic) {
    if (isLogarithmic && low > 0 && high > 0) {
        return std::exp(std::log(low) * (1 - share) + std::log(high) * share);
    }
    return low * (1 - share) + high * share;
}

double GetDefault(LADSPA_PortRangeHintDescriptor hint, const Parameter& parameter) {
    const double low = parameter.minimum;
    const double high = parameter.maximum;
    const auto mix = [&](double share) {
        return Mix(low, high, share, LADSPA_IS_HINT_LOGARITHMIC(hint));
    };
    switch (hint & LADSPA_HINT_DEFAULT_MASK) {
        case LADSPA_HINT_DEFAULT_MINIMUM:
            return low;
        case LADSPA_HINT_DEFAULT_LOW:
            return mix(0.25);
        case LADSPA_HINT_DEFAULT_MIDDLE:
            return mix(0.5);
        case LADSPA_HINT_DEFAULT_HIGH:
            return mix(0.75);
        case LADSPA_HINT_DEFAULT_MAXIMUM:
            return high;
        case LADSPA_HINT_DEFAULT_1:
            return 1;
        case LADSPA_HINT_DEFAULT_100:
            return 100;
        case LADSPA_HINT_DEFAULT_440:
            return 440;
        default:  // 0, or none: what is nearest to it
            return std::max(low, std::min(high, 0.0));
    }
}

Parameter ToParameter(const char* name, const LADSPA_PortRangeHint& range, double rate) {
    const LADSPA_PortRangeHintDescriptor hint = range.HintDescriptor;
    const double unit = LADSPA_IS_HINT_SAMPLE_RATE(hint) ? rate : 1;
    const bool isToggle = LADSPA_IS_HINT_TOGGLED(hint);
    const bool isLow = LADSPA_IS_HINT_BOUNDED_BELOW(hint) || isToggle;
    const bool isHigh = LADSPA_IS_HINT_BOUNDED_ABOVE(hint) || isToggle;
    Parameter parameter;
    parameter.name = name == nullptr ? "" : name;
    parameter.isBounded = isLow && isHigh;
    parameter.isInteger = isToggle || LADSPA_IS_HINT_INTEGER(hint);
    parameter.isLogarithmic = LADSPA_IS_HINT_LOGARITHMIC(hint);
    parameter.minimum = isToggle ? 0 : isLow ? range.LowerBound * unit : -HUGE_VAL;
    parameter.maximum = isToggle ? 1 : isHigh ? range.UpperBound * unit : HUGE_VAL;
    parameter.standard = GetDefault(hint, parameter);
    if (parameter.isInteger) {
        parameter.standard = std::round(parameter.standard);
    }
    return parameter;
}

class LadspaInstance : public AudioInstance {
public:
    LadspaInstance(const LADSPA_Descriptor& descriptor, const Setting& setting)
        : descriptor(descriptor), controls(descriptor.PortCount) {
        ReadPorts(setting.rate);
        Step("instantiate");
        handle = descriptor.instantiate(&descriptor,
                                        static_cast<unsigned long>(std::lround(setting.rate)));
        if (handle == nullptr) {
            throw Failure("instantiate gives nothing");
        }
        Step("connect_port");
        for (unsigned long port = 0; port < descriptor.PortCount; ++port) {
            const bool isControl = LADSPA_IS_PORT_CONTROL(descriptor.PortDescriptors[port]);
            descriptor.connect_port(handle, port, isControl ? &controls[port] : idle.data());
        }
    }

    const Shape& GetShape() const override { return shape; }

    void SetValues(const Values& values) override {
        for (std::size_t i = 0; i < values.size(); ++i) {
            controls[parameterPorts[i]] = static_cast<LADSPA_Data>(values[i]);
        }
    }

    void Activate() override {
        if (descriptor.activate != nullptr) {
            Step("activate");
            descriptor.activate(handle);
        }
    }

    void Process(const Block& block) override {
        Connect(block);
        const AllocationWatch watch;
        descriptor.run(handle, block.frames);
    }

    void Deactivate() override {
        if (descriptor.deactivate != nullptr) {
            Step("deactivate");
            descriptor.deactivate(handle);
        }
    }

private:
    void Destroy() override {
        Step("cleanup");
        descriptor.cleanup(handle);
    }

    void ReadPorts(double rate) {
        for (unsigned long port = 0; port < descriptor.PortCount; ++port) {
            const LADSPA_PortDescriptor kind = descriptor.PortDescriptors[port];
            if (LADSPA_IS_PORT_AUDIO(kind)) {
                (LADSPA_IS_PORT_INPUT(kind) ? inputPorts : outputPorts).push_back(port);
            } else if (LADSPA_IS_PORT_INPUT(kind)) {
                parameterPorts.push_back(port);
                shape.parameters.push_back(
                    ToParameter(descriptor.PortNames[port], descriptor.PortRangeHints[port], rate));
            }
        }
        shape.inputs = inputPorts.size();
        shape.outputs = outputPorts.size();
        shape.inPlace = !LADSPA_IS_INPLACE_BROKEN(descriptor.Properties);
        shape.mayDiffer = LADSPA_IS_REALTIME(descriptor.Properties);
        shape.call = "run";
    }

    void Connect(const Block& block) {
        for (std::size_t i = 0; i < inputPorts.size(); ++i) {
            descriptor.connect_port(handle, inputPorts[i], block.inputs[i]);
        }
        for (std::size_t i = 0; i < outputPorts.size(); ++i) {
            descriptor.connect_port(handle, outputPorts[i], block.outputs[i]);
        }
    }

    const LADSPA_Descriptor& descriptor;
    LADSPA_Handle handle = nullptr;
    Shape shape;
    std::vector<unsigned long> inputPorts, outputPorts, parameterPorts;
    std::vector<LADSPA_Data> controls;  // by port
    // Hosts connect all ports before they activate; a block has its own memory.
    std::vector<float> idle = std::vector<float>(8192);
};

class LadspaPlugin : public AudioPlugin {
public:
    explicit LadspaPlugin(const LADSPA_Descriptor& descriptor) : descriptor(descriptor) {}

    std::string GetTitle() const override {
        return descriptor.Name == nullptr ? "" : descriptor.Name;
    }
    std::string GetId() const override { return descriptor.Label; }
    AudioHandle Create(const Setting& setting) override {
        return AudioHandle(new LadspaInstance(descriptor, setting));
    }

private:
    const LADSPA_Descriptor& descriptor;
};

class LadspaModule : public PluginModule {
public:
    explicit LadspaModule(const Library& library)
        : describe(
              library.Get<std::remove_pointer_t<LADSPA_Descriptor_Function>>("ladspa_descriptor")) {
    }

    std::vector<std::string> List() override {
        std::vector<std::string> labels;
        while (const LADSPA_Descriptor* descriptor = describe(labels.size())) {
            labels.emplace_back(descriptor->Label);
        }
        return labels;
    }

    std::unique_ptr<Plugin> Open(std::size_t index) override {
        return std::make_unique<LadspaPlugin>(*describe(index));
    }

private:
    LADSPA_Descriptor_Function describe;
};

}  // namespace

std::unique_ptr<PluginModule> LoadLadspa(const ModuleRequest& module) {
    return std::make_unique<LadspaModule>(Library(module.path));
}

}  // namespace Tarnex::Exercise
