#pragma once

#include <clap/events.h>

#include <vector>

#include "exercise/AudioPlugin.h"

namespace Tarnex::Exercise {

/// The events of one block, in the order of their times. It may not move: the plugin is given
/// pointers into it.
class ClapEvents {
public:
    ClapEvents();

    ClapEvents(const ClapEvents&) = delete;
    ClapEvents& operator=(const ClapEvents&) = delete;

    void Clear();
    void AddValue(clap_id parameter, void* cookie, double value);

    /// As MIDI or as CLAP's own notes, for the first note port.
    void AddNote(const Note& note, bool isMidi);

    const clap_input_events_t* GetInput() const { return &input; }

    /// Takes what comes and forgets it.
    const clap_output_events_t* GetOutput() const { return &output; }

private:
    union Event {
        clap_event_header_t header;
        clap_event_param_value_t value;
        clap_event_note_t note;
        clap_event_midi_t midi;
    };

    std::vector<Event> events;
    clap_input_events_t input;
    clap_output_events_t output;
};

}  // namespace Tarnex::Exercise
