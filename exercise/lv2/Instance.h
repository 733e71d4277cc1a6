#pragma once

#include "exercise/AudioPlugin.h"
#include "exercise/lv2/Features.h"
#include "exercise/lv2/Ports.h"
#include "exercise/lv2/Worker.h"

namespace Tarnex::Exercise {

/// What all instances of one plugin share.
struct Lv2Type {
    const Bundle& bundle;
    const LilvPlugin* plugin;
    const LV2_Descriptor* descriptor;
    std::vector<Lv2Port> ports;
    BlockLengths lengths;
    bool isLive = false;
    bool isInPlaceBroken = false;
    bool loadsDefaultState = false;
};

class Lv2Instance : public AudioInstance {
public:
    Lv2Instance(const Lv2Type& type, const Setting& setting);

    const Shape& GetShape() const override { return shape; }
    void SetValues(const Values& values) override;
    void Activate() override;
    void Process(const Block& block) override;
    void Deactivate() override;
    std::unique_ptr<State> Save() override;
    void Restore(const State& state) override;

private:
    void Destroy() override;
    void MakeShape(const Setting& setting);
    void Instantiate(double rate);
    void ConnectAll();
    void PrepareAtoms(const std::vector<Note>& notes);
    void LoadDefaultState();
    const void* GetExtension(const char* uri) const;

    const Lv2Type& type;
    Shape shape;
    Worker worker;
    Features features;
    LV2_Handle handle = nullptr;
    LilvInstance forLilv{};
    std::vector<float> controls;                    // by port
    std::vector<std::vector<std::uint64_t>> atoms;  // by port; as aligned as atoms have to be
    std::vector<float> idle;                        // where signals lead until the first block
    std::vector<std::uint32_t> inputPorts, outputPorts, parameterPorts;
};

}  // namespace Tarnex::Exercise
