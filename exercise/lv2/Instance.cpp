#include "exercise/lv2/Instance.h"

#include <fmt/format.h>
#include <lv2/atom/atom.h>
#include <lv2/atom/util.h>
#include <lv2/midi/midi.h>
#include <lv2/state/state.h>

#include <algorithm>
#include <bit>

#include "exercise/Allocations.h"
#include "exercise/Records.h"
#include "exercise/lv2/Uris.h"

namespace Tarnex::Exercise {
namespace {

using Kind = Lv2Port::Kind;

constexpr std::uint8_t NOTE_ON = 0x90;
constexpr std::uint8_t NOTE_OFF = 0x80;
constexpr std::uint8_t VELOCITY = 100;

class Lv2State : public State {
public:
    explicit Lv2State(LilvState* state) : state(state) {}
    ~Lv2State() override { lilv_state_free(state); }

    Lv2State(const Lv2State&) = delete;
    Lv2State& operator=(const Lv2State&) = delete;

    std::string Compare(const State& other) const override {
        const auto* const same = dynamic_cast<const Lv2State&>(other).state;
        return lilv_state_equals(state, same) ? "" : "its properties differ";
    }

    LilvState* state;
};

Parameter ToParameter(const Lv2Port& port, double rate) {
    const double unit = port.isPerRate ? rate : 1;
    return {.name = port.symbol,
            .minimum = port.minimum * unit,
            .maximum = port.maximum * unit,
            .standard = port.standard,  // as hosts take it: the property is about bounds
            .isBounded = port.isBounded,
            .isInteger = port.isInteger || port.isToggle,
            .isLogarithmic = port.isLogarithmic,
            .points = port.points};
}

LV2_URID Number(const char* uri) {
    return Uris::Get().ToNumber(uri);
}

void AppendNotes(LV2_Atom_Sequence* sequence, std::size_t capacity,
                 const std::vector<Note>& notes) {
    struct {
        LV2_Atom_Event event;
        std::uint8_t bytes[3];
    } midi{};
    for (const Note& note : notes) {
        midi.event.time.frames = note.frame;
        midi.event.body = {3, Number(LV2_MIDI__MidiEvent)};
        const std::uint8_t status = note.isOn ? NOTE_ON : NOTE_OFF;
        std::ranges::copy(std::initializer_list<std::uint8_t>{status, note.key, VELOCITY},
                          reinterpret_cast<std::uint8_t*>(&midi.event + 1));
        lv2_atom_sequence_append_event(sequence, static_cast<std::uint32_t>(capacity), &midi.event);
    }
}

}  // namespace

Lv2Instance::Lv2Instance(const Lv2Type& type, const Setting& setting)
    : type(type),
      features(setting, type.lengths, worker),
      controls(type.ports.size()),
      atoms(type.ports.size()),
      idle(setting.longest) {
    MakeShape(setting);
    Instantiate(setting.rate);
    forLilv = {type.descriptor, handle, nullptr};
    worker.SetPlugin(handle,
                     static_cast<const LV2_Worker_Interface*>(GetExtension(LV2_WORKER__interface)));
    ConnectAll();
    if (type.loadsDefaultState) {
        LoadDefaultState();
    }
}

void Lv2Instance::MakeShape(const Setting& setting) {
    for (const Lv2Port& port : type.ports) {
        if (port.kind == Kind::Signal) {
            (port.isInput ? inputPorts : outputPorts).push_back(port.index);
        } else if (port.kind == Kind::Control && port.isInput) {
            parameterPorts.push_back(port.index);
            shape.parameters.push_back(ToParameter(port, setting.rate));
        } else if (port.kind == Kind::Atom) {
            const std::size_t size = std::max<std::size_t>(port.minimumSize, SEQUENCE_SIZE);
            atoms[port.index].resize(size / sizeof(std::uint64_t) + 1);
            shape.takesNotes = shape.takesNotes || port.takesMidi;
        }
    }
    shape.inputs = inputPorts.size();
    shape.outputs = outputPorts.size();
    shape.onlyBlock = type.lengths.isFixed ? setting.longest : 0;
    shape.powersOfTwo = type.lengths.isPowerOfTwo;
    shape.inPlace = !type.isInPlaceBroken;
    shape.mayDiffer = type.isLive;
    shape.call = "run";
}

void Lv2Instance::Instantiate(double rate) {
    Step("instantiate");
    handle = type.descriptor->instantiate(type.descriptor, rate, type.bundle.GetFolder().c_str(),
                                          features.Get());
    if (handle == nullptr) {
        throw Failure("instantiate gives nothing");
    }
}

void Lv2Instance::ConnectAll() {
    Step("connect_port");
    PrepareAtoms({});
    for (const Lv2Port& port : type.ports) {
        void* data = port.kind == Kind::Control  ? &controls[port.index]
                     : port.kind == Kind::Signal ? idle.data()
                     : port.kind == Kind::Atom   ? static_cast<void*>(atoms[port.index].data())
                                                 : nullptr;
        type.descriptor->connect_port(handle, port.index, data);
    }
}

void Lv2Instance::PrepareAtoms(const std::vector<Note>& notes) {
    for (const Lv2Port& port : type.ports) {
        if (port.kind != Kind::Atom) {
            continue;
        }
        auto& buffer = atoms[port.index];
        auto* const sequence = reinterpret_cast<LV2_Atom_Sequence*>(buffer.data());
        const std::size_t capacity = buffer.size() * sizeof buffer.front() - sizeof(LV2_Atom);
        if (!port.isInput) {
            sequence->atom = {static_cast<std::uint32_t>(capacity), Number(LV2_ATOM__Chunk)};
            continue;
        }
        sequence->atom.type = Number(LV2_ATOM__Sequence);
        sequence->body = {};
        lv2_atom_sequence_clear(sequence);
        if (port.takesMidi) {
            AppendNotes(sequence, capacity, notes);
        }
    }
}

void Lv2Instance::SetValues(const Values& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        controls[parameterPorts[i]] = static_cast<float>(values[i]);
    }
}

void Lv2Instance::Activate() {
    if (type.descriptor->activate != nullptr) {
        Step("activate");
        type.descriptor->activate(handle);
    }
}

void Lv2Instance::Process(const Block& block) {
    PrepareAtoms(block.notes);
    for (std::size_t i = 0; i < inputPorts.size(); ++i) {
        type.descriptor->connect_port(handle, inputPorts[i], block.inputs[i]);
    }
    for (std::size_t i = 0; i < outputPorts.size(); ++i) {
        type.descriptor->connect_port(handle, outputPorts[i], block.outputs[i]);
    }
    {
        const AllocationWatch watch;
        type.descriptor->run(handle, static_cast<std::uint32_t>(block.frames));
    }
    worker.Work();
}

void Lv2Instance::Deactivate() {
    if (type.descriptor->deactivate != nullptr) {
        Step("deactivate");
        type.descriptor->deactivate(handle);
    }
}

void Lv2Instance::Destroy() {
    Step("cleanup");
    type.descriptor->cleanup(handle);
}

const void* Lv2Instance::GetExtension(const char* uri) const {
    if (type.descriptor->extension_data == nullptr) {
        return nullptr;
    }
    Step("extension_data");
    return type.descriptor->extension_data(uri);
}

void Lv2Instance::LoadDefaultState() {
    LilvState* state = lilv_state_new_from_world(type.bundle.GetWorld(), &Uris::Get().map,
                                                 lilv_plugin_get_uri(type.plugin));
    if (state != nullptr) {
        Restore(Lv2State(state));
    }
}

std::unique_ptr<State> Lv2Instance::Save() {
    if (GetExtension(LV2_STATE__interface) == nullptr) {
        return nullptr;
    }
    Step("save");
    LilvState* state = lilv_state_new_from_instance(type.plugin, &forLilv, &Uris::Get().map,
                                                    nullptr, nullptr, nullptr, nullptr, nullptr,
                                                    nullptr, LV2_STATE_IS_POD, features.Get());
    return state == nullptr ? nullptr : std::make_unique<Lv2State>(state);
}

void Lv2Instance::Restore(const State& state) {
    Step("restore");
    lilv_state_restore(dynamic_cast<const Lv2State&>(state).state, &forLilv, nullptr, nullptr, 0,
                       features.Get());
    worker.Work();
}

}  // namespace Tarnex::Exercise
