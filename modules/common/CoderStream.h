#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "core/media/Frames.h"
#include "core/media/Streams.h"

namespace Tarnex::Modules {

/// What every coder answers alike. A coder adds its format, `MakeNext` and `Restart`.
/// `Interface` is the stream interface that the coder offers. Thread-bound.
template <class Interface>
class CoderStream : public Proc::RefCounted<Interface> {
public:
    /// `source` is what the coder reads; `name` heads its statistics.
    CoderStream(Proc::Pointer<Proc::IStream> source, std::string name)
        : source(std::move(source)), name(std::move(name)) {}

    Proc::Pointer<Proc::IData> ReadNext() override {
        const auto start = std::chrono::steady_clock::now();
        Proc::Pointer<Proc::IData> data = MakeNext();
        readTime += std::chrono::steady_clock::now() - start;
        count += data ? 1 : 0;
        return data;
    }
    void Seek(std::int64_t position, Proc::Pointer<Proc::IRefCountable> hint) override {
        source->Seek(position, std::move(hint));
        Restart();
    }
    std::int64_t GetDuration() const override { return source->GetDuration(); }
    std::int64_t GetPosition() const override { return source->GetPosition(); }
    Proc::Property GetStreamProperty() const override { return Proc::Property::GetRootItem(); }
    Proc::Property GetStatistic() const override {
        Proc::Property root = Proc::Property::GetRootItem();
        root.Add(Proc::Property::MakeStatistics(name, readTime, count));
        return root;
    }
    void Prepare() override {}
    bool QueryTrue() const override { return true; }
    bool QueryFalse() const override { return false; }
    void EmptyOperationA() override {}
    void EmptyOperationB() override {}
    void EmptyOperationC() override {}
    void EmptyOperationD() override {}

protected:
    /// One frame or packet, empty at the end.
    virtual Proc::Pointer<Proc::IData> MakeNext() = 0;
    /// The source was moved: forget what was read of it.
    virtual void Restart() = 0;

private:
    Proc::Pointer<Proc::IStream> source;
    std::string name;
    std::chrono::nanoseconds readTime{};
    std::uint64_t count = 0;
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
