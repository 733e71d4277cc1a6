#pragma once

#include <vector>

#include "exercise/AudioPlugin.h"
#include "exercise/vst3/Object.h"

namespace Tarnex::Exercise {

/// The events of one block. What a plugin adds is forgotten.
class Vst3Events {
public:
    Vst3Events() = default;

    Vst3Events(const Vst3Events&) = delete;
    Vst3Events& operator=(const Vst3Events&) = delete;

    v3_event_list** AsInterface() { return As<v3_event_list>(*this); }

    void Clear() { events.clear(); }
    void Add(const Note& note);

private:
    static v3_result Get(void* self, std::int32_t index, v3_event* event);

    static const Vst3Table<v3_event_list> TABLE;

    [[maybe_unused]] const Vst3Table<v3_event_list>* table = &TABLE;  // first: see `As`
    std::vector<v3_event> events;
};

}  // namespace Tarnex::Exercise
