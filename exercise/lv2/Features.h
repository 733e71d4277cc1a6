#pragma once

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/state/state.h>
#include <lv2/worker/worker.h>

#include <deque>
#include <vector>

#include "exercise/AudioPlugin.h"
#include "exercise/lv2/Bundle.h"

namespace Tarnex::Exercise {

class Worker;

/// The size of buffers of atom ports, in bytes, unless a port demands more.
inline constexpr std::int32_t SEQUENCE_SIZE = 65536;

/// How the plugin wants its blocks.
struct BlockLengths {
    bool isFixed = false;
    bool isPowerOfTwo = false;
};

/// The features of the host, for one instance.
class Features {
public:
    Features(const Setting& setting, BlockLengths lengths, Worker& worker);

    Features(const Features&) = delete;
    Features& operator=(const Features&) = delete;

    const LV2_Feature* const* Get() const { return list.data(); }

private:
    void AddOption(const char* key, const char* type, std::uint32_t size, const void* value);
    void Add(const char* uri, void* data);

    std::int32_t shortest = 1;
    std::int32_t longest;
    std::int32_t sequenceSize = SEQUENCE_SIZE;
    float rate;
    std::vector<LV2_Options_Option> options;
    LV2_Worker_Schedule schedule;
    LV2_Log_Log log;
    LV2_State_Make_Path makePath;
    LV2_State_Free_Path freePath;
    std::deque<LV2_Feature> features;
    std::vector<const LV2_Feature*> list;  // ends with null
};

/// Throws `Unavailable` if the plugin requires a feature or an option that `Features` hasn't.
BlockLengths RequireFeatures(const Bundle& bundle, const LilvPlugin* plugin);

}  // namespace Tarnex::Exercise
