#include "exercise/vst3/Events.h"

namespace Tarnex::Exercise {
namespace {

constexpr float VELOCITY = 0.8F;

}  // namespace

const Vst3Table<v3_event_list> Vst3Events::TABLE{
    HOST_OBJECT<v3_event_list_iid>,
    {[](void* self) {
         return static_cast<std::uint32_t>(static_cast<Vst3Events*>(self)->events.size());
     },
     Get, [](void* /*self*/, v3_event* /*event*/) { return v3_result(V3_OK); }}};

v3_result Vst3Events::Get(void* self, std::int32_t index, v3_event* event) {
    const auto& events = static_cast<Vst3Events*>(self)->events;
    const auto place = static_cast<std::size_t>(index);
    if (place >= events.size()) {
        return V3_INVALID_ARG;
    }
    *event = events[place];
    return V3_OK;
}

void Vst3Events::Add(const Note& note) {
    v3_event event{};
    event.sample_offset = static_cast<std::int32_t>(note.frame);
    event.flags = V3_EVENT_IS_LIVE;
    if (note.isOn) {
        event.type = V3_EVENT_NOTE_ON;
        event.note_on = {0, note.key, 0, VELOCITY, 0, -1};
    } else {
        event.type = V3_EVENT_NOTE_OFF;
        event.note_off = {0, note.key, VELOCITY, -1, 0};
    }
    events.push_back(event);
}

}  // namespace Tarnex::Exercise
