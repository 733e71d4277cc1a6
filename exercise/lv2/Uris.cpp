#include "exercise/lv2/Uris.h"

#include "exercise/Allocations.h"

namespace Tarnex::Exercise {

Uris& Uris::Get() {
    static auto& uris = *new Uris();  // never freed: plugins' threads may outlive main
    return uris;
}

LV2_URID Uris::ToNumber(const char* uri) {
    const AllocationPause pause;
    const std::lock_guard lock(mutex);
    const auto [entry, isNew] = numbers.try_emplace(uri, static_cast<LV2_URID>(uris.size() + 1));
    if (isNew) {
        uris.emplace_back(uri);
    }
    return entry->second;
}

const char* Uris::ToUri(LV2_URID number) {
    const std::lock_guard lock(mutex);
    return number == 0 || number > uris.size() ? nullptr : uris[number - 1].c_str();
}

}  // namespace Tarnex::Exercise
