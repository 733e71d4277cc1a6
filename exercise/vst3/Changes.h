#pragma once

#include <deque>
#include <vector>

#include "exercise/vst3/Object.h"

namespace Tarnex::Exercise {

/// Changes of parameters in one block, a value each, at its first frame. What a plugin adds is
/// taken up to a fixed number, so that nothing is allocated while it processes.
class Vst3Changes {
public:
    explicit Vst3Changes(std::size_t capacity);

    Vst3Changes(const Vst3Changes&) = delete;
    Vst3Changes& operator=(const Vst3Changes&) = delete;

    v3_param_changes** AsInterface() { return As<v3_param_changes>(*this); }

    void Clear() { count = 0; }
    void Add(v3_param_id id, double value);

private:
    struct Queue {
        const Vst3Table<v3_param_value_queue>* table;  // first: see `As`
        v3_param_id id = 0;
        std::int32_t points = 0;  // 0 or 1
        std::int32_t offset = 0;  // frames
        double value = 0;
    };

    Queue* Take(v3_param_id id);
    static v3_param_value_queue** GetQueue(void* self, std::int32_t index);
    static v3_param_value_queue** AddQueue(void* self, v3_param_id* id, std::int32_t* index);
    static v3_result GetPoint(void* self, std::int32_t index, std::int32_t* offset, double* value);
    static v3_result AddPoint(void* self, std::int32_t offset, double value, std::int32_t* index);

    static const Vst3Table<v3_param_changes> TABLE;
    static const Vst3Table<v3_param_value_queue> QUEUE_TABLE;

    [[maybe_unused]] const Vst3Table<v3_param_changes>* table = &TABLE;  // first: see `As`
    std::vector<Queue> queues;
    std::size_t count = 0;
};

}  // namespace Tarnex::Exercise
