#pragma once

#include "exercise/AudioPlugin.h"
#include "exercise/vst3/Changes.h"
#include "exercise/vst3/Events.h"
#include "exercise/vst3/Object.h"

namespace Tarnex::Exercise {

/// The factory of a module.
using Vst3Factory = Vst3Pointer<v3_plugin_factory>;

/// A component, its processor and its controller, which may be one object.
class Vst3Instance : public AudioInstance {
public:
    Vst3Instance(const Vst3Factory& factory, const v3_tuid classId, const Setting& setting);

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
    void CreateComponent(const Vst3Factory& factory, const v3_tuid classId);
    void CreateController(const Vst3Factory& factory);
    void Connect();
    void Disconnect();
    void TellController();
    void ReadBuses();
    std::vector<std::int32_t> ReadBuses(std::int32_t direction);
    void ActivateBuses(bool isActive);
    void ReadParameters();
    Values GetValues() const;

    Vst3Pointer<v3_component> component;
    Vst3Pointer<v3_audio_processor> processor;
    Vst3Pointer<v3_edit_controller> controller;  // null: it has none
    bool isControllerApart = false;
    Vst3Pointer<v3_connection_point> componentPoint, controllerPoint;
    Setting setting;
    Shape shape;
    std::vector<std::int32_t> inputs, outputs;  // channels of each audio bus
    std::vector<v3_param_info> parameters;      // those that a host may set, without the program,
                                                // which changes the others
    Values values;
    bool hasNewValues = false;
    std::unique_ptr<Vst3Changes> changes, outputChanges;
    Vst3Events events, outputEvents;
    std::int64_t time = 0;  // frames since the activation
};

}  // namespace Tarnex::Exercise
