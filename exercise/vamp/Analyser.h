#pragma once

#include <vamp-hostsdk/PluginHostAdapter.h>
#include <vamp-hostsdk/PluginInputDomainAdapter.h>

#include <deque>
#include <string>
#include <vector>

#include "exercise/Buffer.h"
#include "exercise/Parameters.h"
#include "exercise/Sounds.h"

namespace Tarnex::Exercise {

/// How an analyser is initialised. 0: as it prefers.
struct AnalyserSetting {
    float rate = 48000;  // Hz
    std::size_t channels = 0;
    std::size_t block = 0;  // frames
};

/// A created analyser. Plugins that work on spectra get them from vamp-hostsdk. Each call writes
/// its step.
class Analyser {
public:
    Analyser(const VampPluginDescriptor& descriptor, AnalyserSetting setting);

    std::vector<Parameter> GetParameters() const;
    void SetValues(const Values& values);

    std::size_t GetMaxChannels() const;

    /// False if it refuses the channels and the block, which it may do for all but its preferred
    /// ones.
    [[nodiscard]] bool Initialise(Guard guard = Guard::None);

    /// `context` is for the step.
    void Process(Sound sound, const std::string& context);
    void GetRemaining();
    void Reset();

    /// The last call.
    void Close();

    /// All features since the creation or the reset, as text.
    const std::string& GetFeatures() const { return features; }

private:
    void Choose(const Vamp::Plugin& whole);
    void Keep(const Vamp::Plugin::FeatureSet& set);

    AnalyserSetting setting;
    Vamp::Plugin* plugin;  // deleted in Close only, because nothing may be called after a failure
    std::size_t step = 0;
    std::size_t position = 0;  // of the block, in frames
    std::size_t number = 0;    // of the block
    std::deque<Buffer> buffers;
    Guard guard = Guard::None;
    std::string features;
};

}  // namespace Tarnex::Exercise
