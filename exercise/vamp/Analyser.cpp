#include "exercise/vamp/Analyser.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "exercise/Records.h"

namespace Tarnex::Exercise {
namespace {

constexpr std::size_t USUAL_BLOCK = 1024;             // frames
constexpr std::size_t MOST_FEATURE_TEXT = 1U << 20U;  // bytes

/// Shows whether the plugin gave an instance.
class Adapter : public Vamp::PluginHostAdapter {
public:
    using PluginHostAdapter::PluginHostAdapter;
    bool IsThere() const { return m_handle != nullptr; }
};

Vamp::Plugin* Instantiate(const VampPluginDescriptor& descriptor, float rate) {
    Step("instantiate");
    auto* const adapter = new Adapter(&descriptor, rate);
    if (!adapter->IsThere()) {
        throw Failure("instantiate gives nothing");
    }
    return adapter;
}

Parameter ToParameter(const Vamp::PluginBase::ParameterDescriptor& descriptor) {
    Parameter parameter{.name = descriptor.identifier,
                        .minimum = descriptor.minValue,
                        .maximum = descriptor.maxValue,
                        .standard = descriptor.defaultValue};
    const double quantum = descriptor.quantizeStep;
    if (descriptor.isQuantized && quantum > 0) {
        for (double value = parameter.minimum; value <= parameter.maximum; value += quantum) {
            parameter.points.push_back(value);
        }
    }
    return parameter;
}

}  // namespace

Analyser::Analyser(const VampPluginDescriptor& descriptor, AnalyserSetting setting)
    : setting(setting), plugin(Instantiate(descriptor, setting.rate)) {}

std::vector<Parameter> Analyser::GetParameters() const {
    Step("getParameterDescriptors");
    std::vector<Parameter> parameters;
    for (const auto& descriptor : plugin->getParameterDescriptors()) {
        parameters.push_back(ToParameter(descriptor));
    }
    return parameters;
}

void Analyser::SetValues(const Values& values) {
    Step("setParameter");
    std::size_t index = 0;
    for (const auto& descriptor : plugin->getParameterDescriptors()) {
        plugin->setParameter(descriptor.identifier, static_cast<float>(values[index++]));
    }
}

std::size_t Analyser::GetMaxChannels() const {
    return plugin->getMaxChannelCount();
}

bool Analyser::Initialise(Guard wanted) {
    guard = wanted;
    Step("getInputDomain");
    const bool wantsSpectra = plugin->getInputDomain() == Vamp::Plugin::FrequencyDomain;
    // Only once it is initialised the library's adapter can be deleted.
    auto* const spectra =
        wantsSpectra ? new Vamp::HostExt::PluginInputDomainAdapter(plugin) : nullptr;
    Vamp::Plugin* const whole = spectra == nullptr ? plugin : spectra;
    Choose(*whole);
    Step(fmt::format("initialise, {} channels, step {}, block {}, {} Hz", setting.channels, step,
                     setting.block, setting.rate));
    if (!whole->initialise(setting.channels, step, setting.block)) {
        return false;
    }
    plugin = whole;
    Step("getOutputDescriptors");
    plugin->getOutputDescriptors();
    for (std::size_t channel = 0; channel < setting.channels; ++channel) {
        buffers.emplace_back(guard, setting.block * sizeof(float));
    }
    return true;
}

/// What the setting leaves open.
void Analyser::Choose(const Vamp::Plugin& whole) {
    Step("getPreferredBlockSize");
    if (setting.block == 0) {
        setting.block = whole.getPreferredBlockSize();
        step = whole.getPreferredStepSize();
    }
    setting.block = setting.block == 0 ? USUAL_BLOCK : setting.block;
    step = step == 0 ? setting.block : step;
    if (setting.channels == 0) {
        setting.channels = std::max<std::size_t>(whole.getMinChannelCount(), 1);
    }
}

void Analyser::Process(Sound sound, const std::string& context) {
    std::vector<const float*> inputs;
    for (Buffer& buffer : buffers) {
        auto* samples = reinterpret_cast<float*>(buffer.Place(setting.block * sizeof(float)));
        Fill(samples, setting.block, sound, position, inputs.size());
        inputs.push_back(samples);
    }
    Step(fmt::format("process, block {} of {} frames, {}{}{}", ++number, setting.block,
                     ToString(sound), context.empty() ? "" : ", ", context));
    const auto time = Vamp::RealTime::frame2RealTime(static_cast<long>(position),
                                                     static_cast<unsigned>(setting.rate));
    Keep(plugin->process(inputs.data(), time));
    if (guard != Guard::None && !std::ranges::all_of(buffers, &Buffer::IsPaddingWhole)) {
        throw Failure("writes beyond the end of its input: " + GetLastStep());
    }
    position += step;
}

void Analyser::GetRemaining() {
    Step("getRemainingFeatures");
    Keep(plugin->getRemainingFeatures());
}

void Analyser::Reset() {
    Step("reset");
    plugin->reset();
    position = 0;
    number = 0;
    features.clear();
}

void Analyser::Close() {
    Step("cleanup");
    delete plugin;
}

void Analyser::Keep(const Vamp::Plugin::FeatureSet& set) {
    for (const auto& [output, list] : set) {
        for (const auto& feature : list) {
            const bool isFinite = std::ranges::all_of(
                feature.values, [](float value) { return std::isfinite(value); });
            if (!isFinite) {
                Remark("a feature holds NaN or infinity: " + GetLastStep());
            }
            if (features.size() < MOST_FEATURE_TEXT) {
                features += fmt::format("{} {} {}\n", output, feature.timestamp.toString(),
                                        fmt::join(feature.values, " "));
            }
        }
    }
}

}  // namespace Tarnex::Exercise
