#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "core/media/StreamBase.h"

namespace Tarnex::Modules {

/// A stream whose reads are measured. It adds its format, its place and `MakeNext`.
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
    /// One frame or packet, empty at the end.
    virtual Proc::Pointer<Proc::IData> MakeNext() = 0;
};

/// What every coder answers alike: its place is that of the stream that it reads. A coder adds its
/// format, `MakeNext` and `Restart`. Thread-bound.
template <class Interface, class Base = MeasuredStream<Interface>>
class CoderStream : public Base {
public:
    /// `source` is what the coder reads; it isn't null. `name` heads the statistics.
    CoderStream(Proc::Pointer<Proc::IStream> source, std::string name)
        : Base(std::move(name)), source(std::move(source)) {}

    void Seek(std::int64_t position, Proc::Pointer<Proc::IRefCountable> hint) override {
        source->Seek(position, std::move(hint));
        Restart();
    }
    std::int64_t GetDuration() const override { return source->GetDuration(); }
    std::int64_t GetPosition() const override { return source->GetPosition(); }

protected:
    /// The source was moved: forget what was read of it.
    virtual void Restart() = 0;

private:
    Proc::Pointer<Proc::IStream> source;
};

/// The same for a decoder, whose frames can be read by their own type too.
template <class Interface, class Frame>
class DecoderStream : public CoderStream<Interface> {
public:
    using CoderStream<Interface>::CoderStream;

    Proc::Pointer<Frame> GetNextFrame() override {
        return boost::static_pointer_cast<Frame>(this->ReadNext());
    }
};

}  // namespace Tarnex::Modules
