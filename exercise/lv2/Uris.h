#pragma once

#include <lv2/urid/urid.h>

#include <deque>
#include <mutex>
#include <string>
#include <unordered_map>

namespace Tarnex::Exercise {

/// Numbers for URIs, one table for the process. Thread-safe, because plugins may ask from threads
/// of their own.
class Uris {
public:
    static Uris& Get();

    LV2_URID ToNumber(const char* uri);

    /// Null for a number that was never given.
    const char* ToUri(LV2_URID number);

    LV2_URID_Map map{this, [](LV2_URID_Map_Handle self, const char* uri) {
                         return static_cast<Uris*>(self)->ToNumber(uri);
                     }};
    LV2_URID_Unmap unmap{this, [](LV2_URID_Unmap_Handle self, LV2_URID number) {
                             return static_cast<Uris*>(self)->ToUri(number);
                         }};

private:
    Uris() = default;

    std::mutex mutex;
    std::unordered_map<std::string, LV2_URID> numbers;
    std::deque<std::string> uris;  // number 1 is the first
};

}  // namespace Tarnex::Exercise
