#include "exercise/clap/Events.h"

namespace Tarnex::Exercise {
namespace {

constexpr std::uint8_t NOTE_ON = 0x90;
constexpr std::uint8_t NOTE_OFF = 0x80;
constexpr std::uint8_t VELOCITY = 100;
constexpr double LARGEST_VELOCITY = 127;

template <class Event>
clap_event_header_t MakeHeader(std::uint32_t time, std::uint16_t type) {
    return {sizeof(Event), time, CLAP_CORE_EVENT_SPACE_ID, type, 0};
}

}  // namespace

ClapEvents::ClapEvents()
    : input{this,
            [](const clap_input_events_t* list) {
                return static_cast<std::uint32_t>(
                    static_cast<const ClapEvents*>(list->ctx)->events.size());
            },
            [](const clap_input_events_t* list, std::uint32_t index) {
                const auto& events = static_cast<const ClapEvents*>(list->ctx)->events;
                return index < events.size() ? &events[index].header : nullptr;
            }},
      output{this, [](const clap_output_events_t*, const clap_event_header_t*) { return true; }} {}

void ClapEvents::Clear() {
    events.clear();
}

void ClapEvents::AddValue(clap_id parameter, void* cookie, double value) {
    events.push_back({.value = {MakeHeader<clap_event_param_value_t>(0, CLAP_EVENT_PARAM_VALUE),
                                parameter, cookie, -1, -1, -1, -1, value}});
}

void ClapEvents::AddNote(const Note& note, bool isMidi) {
    if (isMidi) {
        const std::uint8_t status = note.isOn ? NOTE_ON : NOTE_OFF;
        events.push_back({.midi = {MakeHeader<clap_event_midi_t>(note.frame, CLAP_EVENT_MIDI),
                                   0,
                                   {status, note.key, VELOCITY}}});
        return;
    }
    const std::uint16_t type = note.isOn ? CLAP_EVENT_NOTE_ON : CLAP_EVENT_NOTE_OFF;
    events.push_back({.note = {MakeHeader<clap_event_note_t>(note.frame, type), -1, 0, 0, note.key,
                               VELOCITY / LARGEST_VELOCITY}});
}

}  // namespace Tarnex::Exercise
