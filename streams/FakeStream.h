#pragma once

#include <chrono>
#include <cstdint>

#include "core/media/Streams.h"

namespace Tarnex::Core::Utils {

/// What the synthetic streams of both kinds share: a stream of one frame at time 0, whose only way
/// back is `Seek`. `Interface` is `IStreamVideo` or `IStreamAudio`, `Format` its format.
template <class Interface, class Format>
class FakeStream : public Proc::RefCounted<Interface> {
public:
    void EmptyOperationA() override {}
    Proc::Property GetStreamProperty() const override { return Proc::Property(""); }
    std::int64_t GetDuration() const override { return duration; }
    std::int64_t GetPosition() const override { return position; }
    Proc::Pointer<Proc::IData> ReadNext() override { return this->GetNextFrame(); }
    void Seek(std::int64_t newPosition, Proc::Pointer<Proc::IRefCountable>) override {
        position = newPosition;
    }
    void Prepare() override {}
    bool QueryTrue() const override { return true; }
    Proc::Property GetStatistic() const override {
        Proc::Property root = Proc::Property::GetRootItem();
        root.Add(Proc::Property::MakeStatistics(statisticName, readTime, frameCount));
        return root;
    }
    void EmptyOperationB() override {}
    bool QueryFalse() const override { return false; }
    void EmptyOperationC() override {}
    void EmptyOperationD() override {}

    Proc::Pointer<Format> GetFormatCodec() const override { return formatCodec; }

protected:
    FakeStream(const char* name, std::int64_t length)
        : duration(length), formatCodec(Format::Create()), statisticName(name) {}

    /// Compares without a sum, which a far position would overflow.
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

private:
    const char* const statisticName;
};

}  // namespace Tarnex::Core::Utils
