#include <vamp/vamp.h>

#include "tests/exercise/modules/Fixture.h"

namespace {

using namespace Fixture;  // NOLINT(google-build-using-namespace)

/// Its only feature is the sum of all samples since the start.
struct Instance {
    float sum = 0;
    unsigned frames = 0;
    VampFeatureUnion feature[2] = {};
    VampFeatureList list{};
};

float& Shared() {
    static float shared = 0;
    return shared;
}

VampPluginHandle Instantiate(const VampPluginDescriptor* /*descriptor*/, float /*rate*/) {
    At("create");
    Shared() = 0;
    return Is("null") ? nullptr : new Instance();
}

int Initialise(VampPluginHandle self, unsigned /*channels*/, unsigned /*step*/, unsigned block) {
    At("activate");
    static_cast<Instance*>(self)->frames = block;
    return Is("refuses") ? 0 : 1;
}

VampFeatureList* Answer(Instance& instance) {
    instance.feature[0].v1 = {0, 0, 0, 1, &instance.sum, nullptr};
    instance.list = {1, instance.feature};
    return &instance.list;
}

VampFeatureList* Process(VampPluginHandle self, const float* const* inputs, int, int) {
    At("process");
    auto& instance = *static_cast<Instance*>(self);
    for (unsigned i = 0; i < instance.frames; ++i) {
        instance.sum += inputs[0][i];
    }
    if (Is("disturbing")) {
        instance.sum += Shared()++;
    }
    if (Is("beyond")) {
        const_cast<float*>(inputs[0])[instance.frames] = 1;
    }
    return Answer(instance);
}

VampOutputDescriptor* Describe(VampPluginHandle /*self*/, unsigned /*index*/) {
    static VampOutputDescriptor output{
        "sum", "Sum", "", "", 1, 1, nullptr, 0, 0, 0, 0, 0, vampOneSamplePerStep, 0, 0};
    return &output;
}

const VampPluginDescriptor DESCRIPTOR{
    .vampApiVersion = VAMP_API_VERSION,
    .identifier = "sum",
    .name = "Fixture sum",
    .description = "",
    .maker = "",
    .pluginVersion = 1,
    .copyright = "",
    .parameterCount = 0,
    .parameters = nullptr,
    .programCount = 0,
    .programs = nullptr,
    .inputDomain = vampTimeDomain,
    .instantiate = Instantiate,
    .cleanup =
        [](VampPluginHandle self) {
            At("destroy");
            delete static_cast<Instance*>(self);
        },
    .initialise = Initialise,
    .reset =
        [](VampPluginHandle self) {
            if (!Is("forgetful")) {
                static_cast<Instance*>(self)->sum = 0;
                Shared() = 0;
            }
        },
    .getParameter = [](VampPluginHandle, int) { return 0.0F; },
    .setParameter = [](VampPluginHandle, int, float) {},
    .getCurrentProgram = [](VampPluginHandle) { return 0U; },
    .selectProgram = [](VampPluginHandle, unsigned) {},
    .getPreferredStepSize = [](VampPluginHandle) { return 1000U; },
    .getPreferredBlockSize = [](VampPluginHandle) { return 1000U; },
    .getMinChannelCount = [](VampPluginHandle) { return 1U; },
    .getMaxChannelCount = [](VampPluginHandle) { return 2U; },
    .getOutputCount = [](VampPluginHandle) { return 1U; },
    .getOutputDescriptor = Describe,
    .releaseOutputDescriptor = [](VampOutputDescriptor*) {},
    .process = Process,
    .getRemainingFeatures =
        [](VampPluginHandle self) {
            At("deactivate");
            return Answer(*static_cast<Instance*>(self));
        },
    .releaseFeatureSet = [](VampFeatureList*) {},
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const VampPluginDescriptor*
vampGetPluginDescriptor(unsigned /*hostVersion*/, unsigned index) {
    return index == 0 ? &DESCRIPTOR : nullptr;
}
