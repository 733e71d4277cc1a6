#pragma once

#include <string>

#include "exercise/vst3/Object.h"

namespace Tarnex::Exercise {

/// Bytes that a plugin writes or reads, from the start.
class Vst3Stream {
public:
    explicit Vst3Stream(std::string bytes = "") : bytes(std::move(bytes)) {}

    v3_bstream** AsInterface() { return As<v3_bstream>(*this); }
    const std::string& GetBytes() const { return bytes; }

private:
    static v3_result Read(void* self, void* data, std::int32_t size, std::int32_t* read);
    static v3_result Write(void* self, void* data, std::int32_t size, std::int32_t* written);
    static v3_result Seek(void* self, std::int64_t to, std::int32_t mode, std::int64_t* result);
    static v3_result Tell(void* self, std::int64_t* result);

    static const Vst3Table<v3_bstream> TABLE;

    [[maybe_unused]] const Vst3Table<v3_bstream>* table = &TABLE;  // first: see `As`
    std::string bytes;
    std::size_t position = 0;
};

}  // namespace Tarnex::Exercise
