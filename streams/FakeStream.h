#pragma once

#include <chrono>
#include <cstdint>

#include "core/media/StreamBase.h"

namespace Tarnex::Core::Utils {

/// What both synthetic streams share: one frame at time 0, which only `Seek` makes readable again.
/// `Interface` is `IStreamVideo` or `IStreamAudio`, `Format` the type of its format.
template <class Interface, class Format>
class FakeStream : public Proc::PlainStream<Interface> {
public:
    std::int64_t GetDuration() const override { return duration; }
    std::int64_t GetPosition() const override { return position; }
    Proc::Pointer<Proc::IData> ReadNext() override { return this->GetNextFrame(); }
    void Seek(std::int64_t newPosition, Proc::Pointer<Proc::IRefCountable>) override {
        position = newPosition;
    }
    Proc::Pointer<Format> GetFormatCodec() const override { return formatCodec; }

protected:
    explicit FakeStream(std::int64_t length) : duration(length), formatCodec(Format::Create()) {}

    Proc::Property MakeStatistic(const char* name) const {
        return Proc::PlainStream<Interface>::MakeStatistic(name, readTime, frameCount);
    }

    /// Subtracts instead of adding, because a sum could overflow at a far position.
    bool IsAtEnd() const {
        return position > static_cast<const Proc::IStream*>(this)->GetDuration() - duration;
    }

    void MoveOn(std::int64_t length) {
        position += length;
        ++frameCount;
    }

    const std::int64_t duration;
    const Proc::Pointer<Format> formatCodec;
    std::int64_t position = 0;
    std::chrono::nanoseconds readTime{0};
    std::uint64_t frameCount = 0;
};

}  // namespace Tarnex::Core::Utils
