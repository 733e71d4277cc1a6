#include "exercise/vst3/Message.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "exercise/vst3/Object.h"

namespace Tarnex::Exercise {
namespace {

/// A list of attributes. It lives as long as its message.
struct Attributes {
    const Vst3Table<v3_attribute_list>* table;
    std::map<std::string, std::int64_t> integers;
    std::map<std::string, double> floats;
    std::map<std::string, std::u16string> strings;
    std::map<std::string, std::vector<char>> binaries;

    static Attributes& From(void* self) { return *static_cast<Attributes*>(self); }
};

template <class Value>
v3_result Find(const std::map<std::string, Value>& values, const char* id, Value* found) {
    const auto entry = values.find(id);
    if (entry == values.end()) {
        return V3_FALSE;
    }
    *found = entry->second;
    return V3_OK;
}

v3_result SetString(void* self, const char* id, const std::int16_t* text) {
    std::u16string& copy = Attributes::From(self).strings[id];
    copy.clear();
    for (; *text != 0; ++text) {
        copy += static_cast<char16_t>(*text);
    }
    return V3_OK;
}

/// `size` is in bytes.
v3_result GetString(void* self, const char* id, std::int16_t* text, std::uint32_t size) {
    std::u16string found;
    const v3_result result = Find(Attributes::From(self).strings, id, &found);
    if (result == V3_OK && size >= sizeof *text) {
        const std::size_t length = std::min(found.size(), size / sizeof *text - 1);
        std::copy_n(found.begin(), length, text);
        text[length] = 0;
    }
    return result;
}

v3_result SetBinary(void* self, const char* id, const void* data, std::uint32_t size) {
    const auto* bytes = static_cast<const char*>(data);
    Attributes::From(self).binaries[id] = {bytes, bytes + size};
    return V3_OK;
}

v3_result GetBinary(void* self, const char* id, const void** data, std::uint32_t* size) {
    const auto& binaries = Attributes::From(self).binaries;
    const auto entry = binaries.find(id);
    if (entry == binaries.end()) {
        return V3_FALSE;
    }
    *data = entry->second.data();
    *size = static_cast<std::uint32_t>(entry->second.size());
    return V3_OK;
}

constexpr Vst3Table<v3_attribute_list> ATTRIBUTES{
    HOST_OBJECT<v3_attribute_list_iid>,
    {[](void* self, const char* id, std::int64_t value) {
         Attributes::From(self).integers[id] = value;
         return v3_result(V3_OK);
     },
     [](void* self, const char* id, std::int64_t* value) {
         return Find(Attributes::From(self).integers, id, value);
     },
     [](void* self, const char* id, double value) {
         Attributes::From(self).floats[id] = value;
         return v3_result(V3_OK);
     },
     [](void* self, const char* id, double* value) {
         return Find(Attributes::From(self).floats, id, value);
     },
     SetString, GetString, SetBinary, GetBinary}};

struct Message {
    const Vst3Table<v3_message>* table;
    std::atomic<std::uint32_t> references = 1;
    std::string id = {};
    Attributes attributes{&ATTRIBUTES, {}, {}, {}, {}};

    static Message& From(void* self) { return *static_cast<Message*>(self); }
};

std::uint32_t AddReference(void* self) {
    return ++Message::From(self).references;
}

std::uint32_t Release(void* self) {
    const std::uint32_t left = --Message::From(self).references;
    if (left == 0) {
        delete &Message::From(self);
    }
    return left;
}

v3_result Query(void* self, const v3_tuid id, void** object) {
    const v3_result result = QueryOne<v3_message_iid>(self, id, object);
    if (result == V3_OK) {
        AddReference(self);
    }
    return result;
}

constexpr Vst3Table<v3_message> MESSAGE{
    {Query, AddReference, Release},
    {[](void* self) { return Message::From(self).id.c_str(); },
     [](void* self, const char* id) { Message::From(self).id = id == nullptr ? "" : id; },
     [](void* self) { return As<v3_attribute_list>(Message::From(self).attributes); }}};

}  // namespace

v3_message** MakeVst3Message() {
    return As<v3_message>(*new Message{.table = &MESSAGE});
}

}  // namespace Tarnex::Exercise
