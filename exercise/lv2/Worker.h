#pragma once

#include <lv2/core/lv2.h>
#include <lv2/worker/worker.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace Tarnex::Exercise {

/// Does what a plugin schedules in `run` after that call has returned, and hands the answers over
/// before the next one. All on one thread, which the interface allows.
class Worker {
public:
    const LV2_Worker_Schedule& GetSchedule() const { return schedule; }

    /// `interface` may be null.
    void SetPlugin(LV2_Handle plugin, const LV2_Worker_Interface* interface);

    /// After each `run`.
    void Work();

private:
    using Message = std::vector<std::byte>;

    static LV2_Worker_Status Schedule(LV2_Worker_Schedule_Handle self, std::uint32_t size,
                                      const void* data);
    static LV2_Worker_Status Respond(LV2_Worker_Respond_Handle self, std::uint32_t size,
                                     const void* data);

    LV2_Worker_Schedule schedule{this, Schedule};
    LV2_Handle handle = nullptr;
    const LV2_Worker_Interface* interface = nullptr;
    std::deque<Message> requests;
    std::deque<Message> responses;
};

}  // namespace Tarnex::Exercise
