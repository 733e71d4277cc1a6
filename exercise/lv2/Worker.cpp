#include "exercise/lv2/Worker.h"

#include "exercise/Allocations.h"
#include "exercise/Records.h"

namespace Tarnex::Exercise {
namespace {

std::vector<std::byte> Copy(std::uint32_t size, const void* data) {
    const auto* bytes = static_cast<const std::byte*>(data);
    return {bytes, bytes + (bytes == nullptr ? 0 : size)};
}

}  // namespace

void Worker::SetPlugin(LV2_Handle plugin, const LV2_Worker_Interface* offered) {
    handle = plugin;
    interface = offered;
}

void Worker::Work() {
    if (interface == nullptr) {
        return;
    }
    for (; !requests.empty(); requests.pop_front()) {
        const Message& request = requests.front();
        Step("work");
        interface->work(handle, Respond, this, static_cast<std::uint32_t>(request.size()),
                        request.data());
    }
    for (; !responses.empty(); responses.pop_front()) {
        const Message& response = responses.front();
        Step("work_response");
        interface->work_response(handle, static_cast<std::uint32_t>(response.size()),
                                 response.data());
    }
    if (interface->end_run != nullptr) {
        Step("end_run");
        interface->end_run(handle);
    }
}

LV2_Worker_Status Worker::Schedule(LV2_Worker_Schedule_Handle self, std::uint32_t size,
                                   const void* data) {
    const AllocationPause pause;
    static_cast<Worker*>(self)->requests.push_back(Copy(size, data));
    return LV2_WORKER_SUCCESS;
}

LV2_Worker_Status Worker::Respond(LV2_Worker_Respond_Handle self, std::uint32_t size,
                                  const void* data) {
    static_cast<Worker*>(self)->responses.push_back(Copy(size, data));
    return LV2_WORKER_SUCCESS;
}

}  // namespace Tarnex::Exercise
