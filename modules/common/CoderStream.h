#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "core/media/StreamBase.h"

namespace Tarnex::Modules {

/// Measures a stream's reads. The derived class adds the format, the position and `MakeNext`.
template <class Interface>
class MeasuredStream : public Proc::StreamBase<Interface> {
public:
    using Proc::StreamBase<Interface>::StreamBase;

    Proc::Pointer<Proc::IData> ReadNext() override {
        const auto start = std::chrono::steady_clock::now();
        Proc::Pointer<Proc::IData> data = MakeNext();
        this->readTime += std::chrono::steady_clock::now() - start;
        this->frameCount += data ? 1 : 0;
        return data;
    }

protected:
    /// The next frame or packet, or null at the end.
    virtual Proc::Pointer<Proc::IData> MakeNext() = 0;
};

/// What all coders have in common: a coder's position is that of the stream it reads. The derived
/// class adds the format, `MakeNext` and `Restart`. Thread-bound.
template <class Interface, class Base = MeasuredStream<Interface>>
class CoderStream : public Base {
public:
    /// The coder reads `source`, which isn't null. `name` is the heading of the statistics.
    CoderStream(Proc::Pointer<Proc::IStream> source, std::string name)
        : Base(std::move(name)), source(std::move(source)) {}

    void Seek(std::int64_t position, Proc::Pointer<Proc::IRefCountable> hint) override {
        source->Seek(position, std::move(hint));
        Restart();
    }
    std::int64_t GetDuration() const override { return source->GetDuration(); }
    std::int64_t GetPosition() const override { return source->GetPosition(); }

protected:
    /// Called after a seek in the source: discards everything read before it.
    virtual void Restart() = 0;

private:
    Proc::Pointer<Proc::IStream> source;
};

/// A decoder: also returns its frames by their own type.
template <class Interface, class Frame>
class DecoderStream : public CoderStream<Interface> {
public:
    using CoderStream<Interface>::CoderStream;

    Proc::Pointer<Frame> GetNextFrame() override {
        return boost::static_pointer_cast<Frame>(this->ReadNext());
    }
};

}  // namespace Tarnex::Modules
