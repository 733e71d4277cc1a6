#include "exercise/vst3/Host.h"

#include <algorithm>
#include <string_view>

#include "exercise/vst3/Message.h"
#include "exercise/vst3/Object.h"

namespace Tarnex::Exercise {
namespace {

v3_result GetName(void* /*self*/, v3_str_128 name) {
    constexpr std::u16string_view NAME = u"assayer-exercise";
    std::ranges::copy(NAME, name);
    name[NAME.size()] = 0;
    return V3_OK;
}

v3_result CreateInstance(void* /*self*/, v3_tuid /*classId*/, v3_tuid id, void** object) {
    *object = v3_tuid_match(id, v3_message_iid) ? MakeVst3Message() : nullptr;
    return *object != nullptr ? V3_OK : V3_NO_INTERFACE;
}

constexpr Vst3Table<v3_host_application> HOST{HOST_OBJECT<v3_host_application_iid>,
                                              {GetName, CreateInstance}};

v3_result TakeParameter(void* /*self*/, v3_param_id /*id*/) {
    return V3_OK;
}

v3_result TakeValue(void* /*self*/, v3_param_id /*id*/, double /*value*/) {
    return V3_OK;
}

v3_result TakeRestart(void* /*self*/, std::int32_t /*flags*/) {
    return V3_OK;
}

constexpr Vst3Table<v3_component_handler> HANDLER{
    HOST_OBJECT<v3_component_handler_iid>, {TakeParameter, TakeValue, TakeParameter, TakeRestart}};

}  // namespace

v3_funknown** GetVst3Host() {
    static const auto* host = &HOST;
    return As<v3_funknown>(host);
}

v3_component_handler** GetVst3Handler() {
    static const auto* handler = &HANDLER;
    return As<v3_component_handler>(handler);
}

}  // namespace Tarnex::Exercise
