#pragma once

#include <clap/plugin-factory.h>

#include "exercise/AudioPlugin.h"
#include "exercise/clap/Events.h"
#include "exercise/clap/Host.h"

namespace Tarnex::Exercise {

class ClapInstance : public AudioInstance {
public:
    ClapInstance(const clap_plugin_factory_t& factory, const char* id, const Setting& setting);

    const Shape& GetShape() const override { return shape; }
    void SetValues(const Values& values) override;
    void Activate() override;
    void Process(const Block& block) override;
    void Deactivate() override;
    std::unique_ptr<State> Save() override;
    void Restore(const State& state) override;
    void CheckTexts() override;

private:
    void Destroy() override;
    struct Port {
        std::uint32_t channels = 0;
        bool isInPlace = false;
    };

    template <class Extension>
    const Extension* FindExtension(const char* id) const;
    void ReadPorts();
    std::vector<Port> ReadPorts(const clap_plugin_audio_ports_t& audio, bool isInput);
    void ReadNotePorts();
    void ReadParameters();
    void PrepareEvents(const Block& block);
    std::vector<double> GetValues() const;
    void DoAudio(const std::function<void()>& task) { AudioThread::Get().Do(task); }

    ClapHost host;
    const clap_plugin_t* plugin;
    Setting setting;
    Shape shape;
    const clap_plugin_params_t* params = nullptr;
    std::vector<clap_param_info_t> parameters;  // those that a host may set
    std::vector<Port> inputs, outputs;
    bool takesMidi = false;
    Values values;
    bool hasNewValues = false;
    ClapEvents events;
    std::int64_t time = 0;  // frames since the activation
};

}  // namespace Tarnex::Exercise
