#include "exercise/vst3/Changes.h"

namespace Tarnex::Exercise {

const Vst3Table<v3_param_value_queue> Vst3Changes::QUEUE_TABLE{
    HOST_OBJECT<v3_param_value_queue_iid>,
    {[](void* self) { return static_cast<Queue*>(self)->id; },
     [](void* self) { return static_cast<Queue*>(self)->points; }, GetPoint, AddPoint}};

const Vst3Table<v3_param_changes> Vst3Changes::TABLE{
    HOST_OBJECT<v3_param_changes_iid>,
    {[](void* self) { return static_cast<std::int32_t>(static_cast<Vst3Changes*>(self)->count); },
     GetQueue, AddQueue}};

Vst3Changes::Vst3Changes(std::size_t capacity) : queues(capacity, Queue{&QUEUE_TABLE}) {}

Vst3Changes::Queue* Vst3Changes::Take(v3_param_id id) {
    if (count == queues.size()) {
        return nullptr;
    }
    queues[count] = {&QUEUE_TABLE, id};
    return &queues[count++];
}

void Vst3Changes::Add(v3_param_id id, double value) {
    if (Queue* queue = Take(id)) {
        AddPoint(queue, 0, value, nullptr);
    }
}

v3_param_value_queue** Vst3Changes::GetQueue(void* self, std::int32_t index) {
    auto& changes = *static_cast<Vst3Changes*>(self);
    const auto place = static_cast<std::size_t>(index);
    return place < changes.count ? As<v3_param_value_queue>(changes.queues[place]) : nullptr;
}

v3_param_value_queue** Vst3Changes::AddQueue(void* self, v3_param_id* id, std::int32_t* index) {
    auto& changes = *static_cast<Vst3Changes*>(self);
    Queue* queue = changes.Take(*id);
    if (queue != nullptr && index != nullptr) {
        *index = static_cast<std::int32_t>(changes.count - 1);
    }
    return queue == nullptr ? nullptr : As<v3_param_value_queue>(*queue);
}

v3_result Vst3Changes::GetPoint(void* self, std::int32_t index, std::int32_t* offset,
                                double* value) {
    const auto& queue = *static_cast<Queue*>(self);
    if (index < 0 || index >= queue.points) {
        return V3_INVALID_ARG;
    }
    *offset = queue.offset;
    *value = queue.value;
    return V3_OK;
}

v3_result Vst3Changes::AddPoint(void* self, std::int32_t offset, double value,
                                std::int32_t* index) {
    auto& queue = *static_cast<Queue*>(self);
    queue.points = 1;
    queue.offset = offset;
    queue.value = value;
    if (index != nullptr) {
        *index = 0;
    }
    return V3_OK;
}

}  // namespace Tarnex::Exercise
