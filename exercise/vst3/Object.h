#pragma once

#include <cstdint>
#include <utility>

#include "exercise/vst3/Headers.h"

namespace Tarnex::Exercise {

/// The functions that every object has, and those of its own interface: what an object of the host
/// points to with its first member.
template <class Interface>
struct Vst3Table {
    v3_funknown unknown;
    Interface own;
};

/// An object of the host as the interface wants to see it. Its first member points to its table.
template <class Interface, class Object>
Interface** As(Object& object) {
    return static_cast<Interface**>(static_cast<void*>(&object));
}

/// Answers for an object with one interface that belongs to the host: nobody else frees it.
template <const v3_tuid& Id>
v3_result QueryOne(void* self, const v3_tuid id, void** object) {
    const bool isKnown = v3_tuid_match(id, Id) || v3_tuid_match(id, v3_funknown_iid);
    *object = isKnown ? self : nullptr;
    return isKnown ? V3_OK : V3_NO_INTERFACE;
}

inline std::uint32_t KeepReference(void* /*self*/) {
    return 1;
}

template <const v3_tuid& Id>
inline constexpr v3_funknown HOST_OBJECT{QueryOne<Id>, KeepReference, KeepReference};

/// A reference to an object of the plugin. The destructor doesn't release it, because nothing may
/// be called of a plugin that failed.
template <class Interface>
class Vst3Pointer {
public:
    Vst3Pointer() = default;
    explicit Vst3Pointer(void* object) : object(static_cast<Interface**>(object)) {}

    explicit operator bool() const { return object != nullptr; }
    Interface** Get() const { return object; }

    /// `component.Call(&v3_component::set_active, true)`
    template <class Result, class... Formal, class... Actual>
    Result Call(Result (*Interface::*function)(void*, Formal...), Actual... arguments) const {
        return (v3_cpp_obj(object)->*function)(object, arguments...);
    }

    /// Another interface of the same object; null if it has none.
    template <class Other>
    Vst3Pointer<Other> Query(const v3_tuid id) const {
        Other** found = nullptr;
        const v3_result result = v3_cpp_obj_query_interface(object, id, &found);
        return Vst3Pointer<Other>(result == V3_OK ? found : nullptr);
    }

    void Release() {
        if (object != nullptr) {
            v3_cpp_obj_unref(std::exchange(object, nullptr));
        }
    }

private:
    Interface** object = nullptr;
};

}  // namespace Tarnex::Exercise
