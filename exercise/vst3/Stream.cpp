#include "exercise/vst3/Stream.h"

#include <algorithm>

namespace Tarnex::Exercise {

const Vst3Table<v3_bstream> Vst3Stream::TABLE{HOST_OBJECT<v3_bstream_iid>,
                                              {Read, Write, Seek, Tell}};

v3_result Vst3Stream::Read(void* self, void* data, std::int32_t size, std::int32_t* read) {
    auto& stream = *static_cast<Vst3Stream*>(self);
    if (size < 0) {
        return V3_INVALID_ARG;
    }
    const std::size_t begin = std::min(stream.position, stream.bytes.size());
    const std::size_t count =
        stream.bytes.copy(static_cast<char*>(data), static_cast<std::size_t>(size), begin);
    stream.position = begin + count;
    if (read != nullptr) {
        *read = static_cast<std::int32_t>(count);
    }
    return V3_OK;
}

v3_result Vst3Stream::Write(void* self, void* data, std::int32_t size, std::int32_t* written) {
    auto& stream = *static_cast<Vst3Stream*>(self);
    if (size < 0) {
        return V3_INVALID_ARG;
    }
    const auto count = static_cast<std::size_t>(size);
    stream.bytes.resize(std::max(stream.bytes.size(), stream.position + count));
    std::copy_n(static_cast<const char*>(data), count,
                stream.bytes.begin() + static_cast<std::ptrdiff_t>(stream.position));
    stream.position += count;
    if (written != nullptr) {
        *written = size;
    }
    return V3_OK;
}

v3_result Vst3Stream::Seek(void* self, std::int64_t to, std::int32_t mode, std::int64_t* result) {
    auto& stream = *static_cast<Vst3Stream*>(self);
    const std::size_t from = mode == V3_SEEK_SET   ? 0
                             : mode == V3_SEEK_CUR ? stream.position
                                                   : stream.bytes.size();
    const std::int64_t target = static_cast<std::int64_t>(from) + to;
    if (target < 0) {
        return V3_INVALID_ARG;
    }
    stream.position = static_cast<std::size_t>(target);
    return result == nullptr ? v3_result(V3_OK) : Tell(self, result);
}

v3_result Vst3Stream::Tell(void* self, std::int64_t* result) {
    *result = static_cast<std::int64_t>(static_cast<Vst3Stream*>(self)->position);
    return V3_OK;
}

}  // namespace Tarnex::Exercise
